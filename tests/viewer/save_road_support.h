#pragma once
// A viewer without a window: a picture, the file it came from, and what its window would hold.
#include "core/expect_failure.h"
#include "core/save_support.h"
#include "imaging/comments/slots.h"
#include "imaging/worker/worker_host.h"
#include "platform/fake/fake_platform.h"
#include "viewer/save_road.h"

namespace quillane {

inline QString ViewerSample(const char* name)
{
    return QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/") + QLatin1String(name);
}

class SaveRoadPlace : public SavePlace {
public:
    SaveRoadPlace() : SavePlace(QuickFolder()), mPlatform(Path("home"))
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
        held.appTitle = QStringLiteral("Quillane");
    }
    /// A copy of a sample becomes the viewer's file.
    void Open(const char* sample, const QByteArray& name = {})
    {
        const QByteArray leaf = name.isEmpty() ? QByteArray(sample) : name;
        Write(leaf, ReadWholeFile(ViewerSample(sample), 1 << 26));
        OpenFile(leaf);
    }
    /// A file of the folder becomes the viewer's file; its texts count as read, as in a window.
    void OpenFile(const QByteArray& name)
    {
        held.file = Path(name);
        LEAD1.SetBitmap({});
        ResumeNext([&] { LEAD1.Load(held.file, 0, 0); });
        NoteLoaded(held, LEAD1, held.file);
        if (held.comments) {
            const CommentValue& text = held.comments->At(kDescriptionSlot);
            held.tags = text.IsEmpty() ? QString() : text.Text();
            held.tagsRead = true;
        }
    }
    UiLoop& Loop() { return mPlatform.loop; }
    void Save() { SaveImage(LEAD1, held, Loop()); }
    SaveDialogChoice Choice(const QByteArray& name, qint16 format, qint32 bits = 24)
    {
        SaveDialogChoice choice;
        choice.file = Path(name);
        choice.format = format;
        choice.bits = bits;
        choice.quality = held.quality;
        return choice;
    }
    void SaveAs(const SaveDialogChoice& choice) { SaveImageAs(LEAD1, held, choice, Loop()); }
    /// Pixels from elsewhere than a file, as a paste brings them.
    void Paste(QSize size = {31, 17})
    {
        QImage pixels(size, QImage::Format_RGB32);
        pixels.fill(0xff336699);
        LEAD1.Adopt({Bitmap(pixels, ColourModel::Rgb, 24), LEAD1.Info(), nullptr});
    }
    QString Description(const QByteArray& name) const
    {
        const CommentSet set = ReadComments(Path(name));
        const CommentValue& value = set.At(kDescriptionSlot);
        return value.IsEmpty() ? QString() : value.Text();
    }
    EngineInstance LEAD1;
    ViewerPicture held;

protected:
    FakePlatform mPlatform;
};

} // namespace quillane
