// What no honest process says.
#include "core/failure.h"
#include "send_raw.h"
#include <cstring>
#include <unistd.h>

namespace quillane::worker {

namespace {

FactsMessage GoodFacts()
{
    FactsMessage facts{};
    facts.width = facts.height = 10;
    facts.bits = 24;
    facts.format = 3;
    facts.pages = 1;
    facts.orientation = 1;
    return facts;
}
AnnounceMessage GoodAnnounce()
{
    AnnounceMessage announce{};
    announce.width = announce.height = 10;
    announce.layout = PixelLayout::Rgb32;
    announce.fileDepth = 24;
    return announce;
}
void AwaitGrant()
{
    GrantMessage grant{};
    ReceivePacket(kSocketDescriptor, &grant, sizeof(grant));
}

void SayOutput(qint64 position, qint32 count)
{
    SendRaw(OutputMessage{{}, position, count}, MessageKind::Output);
}
} // namespace

void SayGarbage()
{
    char noise[200];
    for (size_t i = 0; i < sizeof(noise); ++i) {
        noise[i] = char(i * 37);
    }
    SendPacket(kSocketDescriptor, noise, sizeof(noise));
}
void SayTooMuch()
{
    static char noise[kMaxMessageBytes + 100];
    const MessageHead head{kProtocolMark, MessageKind::Facts, ticket};
    std::memcpy(noise, &head, sizeof(head));
    SendPacket(kSocketDescriptor, noise, sizeof(noise));
}
void SayLittle()
{
    SendPacket(kSocketDescriptor, "hello", 5);
}
void SayOldTicket()
{
    SendRaw(GoodFacts(), MessageKind::Facts, ticket - 1);
}
void SayWrongKind()
{
    SendRaw(GoodFacts(), MessageKind::Announce);
}
void SendDescriptor()
{
    FactsMessage facts = GoodFacts();
    facts.head = {kProtocolMark, MessageKind::Facts, ticket};
    SendPacket(kSocketDescriptor, &facts, sizeof(facts), kSocketDescriptor);
}
void SayNegativeFacts()
{
    FactsMessage facts = GoodFacts();
    facts.width = -5;
    SendRaw(facts, MessageKind::Facts);
}
void SayEndlessText()
{
    FactsMessage facts = GoodFacts();
    std::memset(facts.compression, 'x', sizeof(facts.compression));
    SendRaw(facts, MessageKind::Facts);
}
void RefuseStrangely()
{
    RefusedMessage refused{};
    refused.number = 424242;
    refused.bytes = 1;
    refused.words[0] = 'x';
    SendRaw(refused, MessageKind::Refused);
}
void RefuseEndlessly()
{
    RefusedMessage refused{};
    refused.number = kFailureUnreadable;
    refused.bytes = 1'000'000;
    SendRaw(refused, MessageKind::Refused);
}
void AnnounceHuge()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.width = announce.height = 0x7fffffff;
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceNegative()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.height = -10;
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceLayout()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.layout = PixelLayout(77);
    SendRaw(announce, MessageKind::Announce);
}
void AnnounceColours()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.colourCount = 100'000;
    SendRaw(announce, MessageKind::Announce);
}
void ClaimTooManyRows()
{
    SendRaw(GoodAnnounce(), MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 11}, MessageKind::Rows);
}
void ClaimFewerRows()
{
    SendRaw(GoodAnnounce(), MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 5}, MessageKind::Rows);
    SendRaw(RowsMessage{{}, 4}, MessageKind::Rows);
}
void ClaimBeyondWindow()
{
    AnnounceMessage announce = GoodAnnounce();
    announce.width = 10'000;
    announce.height = 5'000;
    SendRaw(announce, MessageKind::Announce);
    AwaitGrant();
    SendRaw(RowsMessage{{}, 5'000}, MessageKind::Rows);
}
void SendEndlessProfile()
{
    PieceMessage piece{};
    piece.head = {kProtocolMark, MessageKind::Profile, ticket};
    piece.count = kMaxTextBytes;
    while (SendPacket(kSocketDescriptor, &piece, sizeof(piece))) { }
    ::_exit(0);
}

void OutputBeyondSlot()
{
    SayOutput(0, qint32(kOutputSlotBytes + 1));
}
void OutputNegative()
{
    SayOutput(0, -1);
}
void OutputBeforeFile()
{
    SayOutput(-1, 1);
}
void OutputBehindHole()
{
    SayOutput(1 << 20, 1);
}
void OutputFarBehind()
{
    SayOutput(0x7fffffffffffffff, 16);
}
void TakeTooMuch()
{
    SendRaw(TakenMessage{{}, 1'000'000}, MessageKind::Taken);
}
void TakeLess()
{
    SendRaw(TakenMessage{{}, -1}, MessageKind::Taken);
}
void SayDoneAtOnce()
{
    SendRaw(DoneMessage{{}, 0}, MessageKind::Done);
}

} // namespace quillane::worker
