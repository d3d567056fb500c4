#pragma once
// What the tests of saves that go wrong share: kinds of files, a picture loaded from a copy of its
// own, and what must hold after a save that failed.
#include "core/save_support.h"
#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "imaging/worker/worker_host.h"
#include <QRegularExpression>

namespace quillane {

/// A kind of file, by a sample of it, or by the name of one that is made.
struct FaultKind {
    const char* sample;
    bool comments; ///< it carries a description
};
inline constexpr FaultKind kFaultKinds[] = {
    {"AST_0102.JPG", true}, {"petals.png", true}, {"CHART.TIF", true},
    {"chart.gif", true},    {"chart.BMP", false}, {"made.dic", true},
};

/// The content of a sample. The sample DICOM file has more shades than are shown, so that changed
/// pixels of it are not saved: one of the colours of another sample is made.
inline QByteArray FaultSample(const QByteArray& name)
{
    const QString samples = QStringLiteral(QUILLANE_SOURCE_FOLDER "/samples/");
    if (name != "made.dic") {
        return ReadWholeFile(samples + QString::fromUtf8(name), 1 << 24);
    }
    static const QByteArray kMade = [&] {
        EncodeRequest request;
        request.format = 90;
        return EncodePicture(LoadFile(samples + QStringLiteral("flower.ppm")).bitmap, request);
    }();
    return kMade;
}

/// A folder in which a copy of the sample stands alone.
class FaultPlace : public SavePlace {
public:
    explicit FaultPlace(const FaultKind& kind) : SavePlace(QuickFolder()), mName(kind.sample)
    {
        worker::Configure(QStringLiteral(QUILLANE_BINARY_FOLDER "/bin/quillane-codec"), 1);
        Write(mName, FaultSample(mName));
    }
    const QByteArray& Name() const { return mName; }
    QString File() const { return Path(mName); }
    QByteArray FileBytes() const { return Whole(mName); }

private:
    QByteArray mName;
};

/// The picture of a file, inverted, with all comments of the file and another description.
class ChangedPicture {
public:
    explicit ChangedPicture(const FaultKind& kind, const QString& file) : mFile(file)
    {
        lead.Load(file, 0, 0);
        for (qint16 slot = kFirstSlot; slot <= kLastSlot; ++slot) {
            lead.SetComment(slot, lead.ReadComment(file, 0, slot));
        }
        if (kind.comments) {
            lead.SetComment(kDescriptionSlot, QStringLiteral("City=Rome\r\n"));
        }
        lead.Invert();
    }
    /// Number and words of the Failure of a save over the file, or another; 0 when it went well.
    qint32 Save(QString& words, const QString& to = {}, qint32 mode = kSaveReplace)
    {
        try {
            lead.Save(to.isEmpty() ? mFile : to, lead.InfoFormat(), 0, kBestQuality, mode);
            return 0;
        } catch (const Failure& failure) {
            words = failure.Description();
            return failure.Number();
        }
    }
    EngineInstance lead;

private:
    QString mFile;
};

/// The words name the file and tell what can be done.
inline void ExpectHelpful(const QString& words, const QByteArray& name)
{
    EXPECT_TRUE(words.contains(u'"' + QString::fromUtf8(name) + u'"')) << words.toStdString();
    static const QRegularExpression kAdvice(
        QStringLiteral("(\\. |; )(Save|save|Choose|Make room|Load it|open it|try again|Close)"));
    EXPECT_TRUE(kAdvice.match(words).hasMatch()) << words.toStdString();
    EXPECT_TRUE(words.endsWith(u'.')) << words.toStdString();
}

/// Nothing is left in the folder but these, now and for the next start.
inline void ExpectAlone(const SavePlace& place, QStringList names)
{
    names.sort();
    EXPECT_EQ(place.Entries(), names) << place.Entries().join(u' ').toStdString();
    EXPECT_TRUE(place.Journals().isEmpty());
}

/// The file is a whole picture of that size, with the description where its kind carries one.
inline void ExpectSaved(const FaultKind& kind, const QString& file, QSize size)
{
    const LoadedImage loaded = LoadFile(file);
    EXPECT_FALSE(loaded.bitmap.IsPartial());
    EXPECT_EQ(loaded.bitmap.Pixels().size(), size);
    if (kind.comments) {
        EXPECT_EQ(ReadComments(file).At(kDescriptionSlot).Text(), QStringLiteral("City=Rome\r\n"));
    }
}

} // namespace quillane
