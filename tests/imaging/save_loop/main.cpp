// Saves one picture over and over until it is killed.
//   quillane-save-loop FILE picture|tags plain|named CODEC-PROGRAM
// Before every step that changes the disk, and around loading, a byte goes to the standard output.
// Round n of "picture" fills the picture with the grey of that round (see LoopLevel) and says so in
// the description; "tags" writes the description alone.
#include "core/atomic_save.h"
#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "imaging/save_loop/rounds.h"
#include "imaging/worker/worker_host.h"
#include "metadata/tag_writer.h"
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace quillane {

namespace {

void Note()
{
    if (::write(STDOUT_FILENO, "s", 1) != 1) {
        _exit(1);
    }
}

void SaveRound(const QString& file, int round, bool tags)
{
    EngineInstance lead;
    lead.Load(file, 0, 0);
    Note();
    if (tags) {
        WriteTagText(lead, file, LoopText(round),
                     {lead.InfoFormat(), lead.InfoBits(), kBestQuality, kSaveReplace});
        return;
    }
    QImage pixels(lead.BitmapWidth(), lead.BitmapHeight(), QImage::Format_RGB32);
    pixels.fill(qRgb(LoopLevel(round), LoopLevel(round), LoopLevel(round)));
    lead.SetBitmap(Bitmap(std::move(pixels), ColourModel::Rgb, 24));
    // A file of a palette gets one, a file of grey is grey.
    if (lead.InfoBits() <= 8) {
        lead.Grayscale(8);
    }
    CopyComments(lead, file);
    lead.SetComment(kDescriptionSlot, LoopText(round));
    lead.Save(file, lead.InfoFormat(), 0, kBestQuality, kSaveReplace);
}

} // namespace

} // namespace quillane

int main(int argc, char** argv)
{
    if (argc != 5) {
        return 2;
    }
    namespace q = quillane;
    q::worker::Configure(QString::fromLocal8Bit(argv[4]), 1);
    const bool named = std::strcmp(argv[3], "named") == 0;
    const q::SaveProbeScope scope([named](q::SaveStep step, qint64&) {
        q::Note();
        return named && step == q::SaveStep::OpenUnnamed ? EOPNOTSUPP : 0;
    });
    try {
        for (int round = 1;; ++round) {
            q::SaveRound(QString::fromLocal8Bit(argv[1]), round, std::strcmp(argv[2], "tags") == 0);
        }
    } catch (const q::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.Description().toUtf8().constData());
        return 3;
    }
}
