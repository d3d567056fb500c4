#pragma once
// Decoders and encoders that crash, hang, lie or try to break out.
#include "imaging/worker_main/service/worker_codec.h"

namespace quillane::worker {

/// Number of the running request; those of a process are numbered from 1.
extern quint64 ticket;
/// Does nothing for ever.
[[noreturn]] void Forever();

// Honest ones, up to the row at which they are not. What the content tells is the size.
ImageFacts ProbeEcho(ByteSource& source);
bool DecodeEcho(ByteSource& source, const PictureWish&, PictureSink& sink);
bool DecodeCrash(ByteSource& source, const PictureWish&, PictureSink& sink);
bool DecodeHang(ByteSource& source, const PictureWish&, PictureSink& sink);
bool DecodeSlow(ByteSource&, const PictureWish&, PictureSink& sink);
bool DecodeShort(ByteSource& source, const PictureWish&, PictureSink& sink);
bool DecodeThrows(ByteSource&, const PictureWish&, PictureSink&);
ImageFacts ProbeCrash(ByteSource&);
ImageFacts ProbeHang(ByteSource&);
ImageFacts ProbeExit(ByteSource&);

void EncodeEcho(PictureRows& picture, const EncodeWish& wish, FileSink& file);
void EncodeCrash(PictureRows& picture, const EncodeWish&, FileSink&);
void EncodeHang(PictureRows& picture, const EncodeWish&, FileSink&);
void EncodeExit(PictureRows&, const EncodeWish&, FileSink&);
void EncodeNothing(PictureRows&, const EncodeWish&, FileSink&);
void EncodeThrows(PictureRows&, const EncodeWish&, FileSink&);
void EncodeGreedily(PictureRows& picture, const EncodeWish&, FileSink&);
void EncodeEndlessly(PictureRows&, const EncodeWish&, FileSink& file);
void EncodeFarAway(PictureRows&, const EncodeWish&, FileSink& file);

// Lies. Each says one thing that no honest process says, in answer to whatever was asked.
using Lie = void (*)();
void SayGarbage();
void SayTooMuch();
void SayLittle();
void SayOldTicket();
void SayWrongKind();
void SendDescriptor();
void SayNegativeFacts();
void SayEndlessText();
void RefuseStrangely();
void RefuseEndlessly();
void AnnounceHuge();
void AnnounceNegative();
void AnnounceLayout();
void AnnounceColours();
void ClaimTooManyRows();
void ClaimFewerRows();
void ClaimBeyondWindow();
void SendEndlessProfile();
void OutputBeyondSlot();
void OutputNegative();
void OutputBeforeFile();
void OutputBehindHole();
void OutputFarBehind();
void TakeTooMuch();
void TakeLess();
void SayDoneAtOnce();
template <Lie lie> ImageFacts LyingProbe(ByteSource&)
{
    ++ticket;
    lie();
    Forever();
}
template <Lie lie> bool LyingDecode(ByteSource&, const PictureWish&, PictureSink&)
{
    ++ticket;
    lie();
    Forever();
}

template <Lie lie> void LyingEncode(PictureRows&, const EncodeWish&, FileSink&)
{
    ++ticket;
    lie();
    Forever();
}
// Attempts to break out; what came of each is told as a text or as the file's content.
int TryOpen();
int TryCreate();
int TryStat();
int TrySocket();
int TryExecve();
int TryFork();
int TryTrace();
int TryKill();
int TryExecutableMemory();
int TryMuchMemory();
int TryTruncatingTheWindow();
int TryConnect();
int TryWriting();
int TryPwrite();
void TellText(ByteSource&, const TextVisitor& visit);
void TellTooOften(ByteSource&, const TextVisitor& visit);
void TellWrongSlot(ByteSource&, const TextVisitor& visit);
void Tell(const TextVisitor& visit, bool refused);
template <int (*attempt)()> void TryOut(ByteSource&, const TextVisitor& visit)
{
    ++ticket;
    Tell(visit, attempt() < 0);
}
template <int (*attempt)()> void TryOutEncoding(PictureRows&, const EncodeWish&, FileSink& file)
{
    ++ticket;
    const QByteArray outcome = attempt() < 0 ? "refused" : "allowed";
    file.Append(outcome.constData(), outcome.size());
}

} // namespace quillane::worker
