#include "metadata/description.h"

#include "core/file_kinds.h"
#include "core/numbers.h"
#include "core/paths.h"
#include "core/strings.h"
#include "imaging/comments/slots.h"
#include "imaging/format_table.h"
#include "metadata/album_preview.h"
#include "metadata/catalogue.h"
#include "metadata/exif_date.h"

#include <algorithm>

namespace quillane {

namespace {

constexpr QLatin1String kPanelLineEnd{"\r\n"};
constexpr int kPanelBoxGap = 5; ///< between the last line and the text box

/// Prints at a place, which has to fit 16 bits.
void PrintAt(QVector<PanelLine>& lines, int x, int y, const QString& text)
{
    lines.append({ToInt16(x), ToInt16(y), text});
}

/// The file's date and time in the system's words; Failure for a file that is not there.
QString PanelFileDate(const FileStat& stat, const UiLoop& loop)
{
    if (stat.type == FileType::Missing) {
        throw Failure(kFailureNoFile, QStringLiteral("The file is not there."));
    }
    return loop.SystemDateText(ModifiedTime(stat));
}

QString PanelFileLength(const FileStat& stat)
{
    if (stat.type == FileType::Missing) {
        throw Failure(kFailureNoFile, QStringLiteral("The file is not there."));
    }
    return QString::number(stat.size);
}

int PanelIconOf(const QString& fileName)
{
    if (IsAlbumFile(fileName) == kTrue) {
        return kPanelAlbumIcon;
    }
    if (IsMediaFile(fileName) == kTrue) {
        return kPanelMediaIcon;
    }
    return IsPrintSetFile(fileName) == kTrue ? kPanelPrintSetIcon : kPanelImageIcon;
}

/// One run of ComposeDescription.
class DescriptionRun {
public:
    DescriptionRun(const DescriptionInput& input, Globals& globals, UiLoop& loop)
        : mInput(input),
          mFile(input.fileName),
          mGlobals(globals),
          mLoop(loop)
    {
        mContent.banner = LeafName(mFile);
        mContent.icon = PanelIconOf(mFile);
    }

    PanelContent Run()
    {
        ResumeNext([&] {
            mContent.boxWidth = ToInt16(mInput.surfaceWidth - 10);
            mLeft = (mInput.surfaceWidth - mContent.boxWidth) / 2 + 2;
            if (IsAlbumFile(mFile) == kTrue) {
                ComposeAlbum();
            } else if (IsPrintSetFile(mFile) == kTrue) {
                ComposePrintSet();
            } else {
                ComposeImage();
            }
        });
        SeparateLines();
        return mContent;
    }

private:
    void Print(int right, int down, const QString& text)
    {
        PrintAt(mContent.lines, mLeft + right, kPanelFactsBase + down, text);
    }

    void ComposeAlbum()
    {
        mContent.boxVisible = true;
        Print(40, -250, QStringLiteral("Photo Album"));
        Print(50, -200, QStringLiteral("Date: ") + PanelFileDate(mInput.stat, mLoop));
        Print(50, -185, QStringLiteral("Size: ") + PanelFileLength(mInput.stat));
        Print(40, -120, QStringLiteral("Photo Album Comments"));
        Print(45, -15, QStringLiteral("Photo Album File(s)"));
        const AlbumPreview album = ReadAlbumPreview(mFile);
        mContent.albumComment = album.comment;
        mContent.albumCommentVisible = album.hasComment;
        mContent.boxText = album.files;
        Print(50, -170, QStringLiteral("Total Files: ") + QString::number(album.count));
    }

    void ComposePrintSet()
    {
        Print(40, -250, QStringLiteral("Print Setting File"));
        ResumeNext(
            [&] { Print(50, -200, QStringLiteral("Date: ") + PanelFileDate(mInput.stat, mLoop)); });
        ResumeNext(
            [&] { Print(50, -185, QStringLiteral("Size: ") + PanelFileLength(mInput.stat)); });
    }

    void ComposeImage()
    {
        if (IsMediaFile(mFile) == kTrue) {
            Print(50, 60, QStringLiteral("Video File"));
        }
        mContent.pictureWanted = true;
        qint16 format = mInput.lastFormat;
        if (mInput.facts) {
            const ImageFacts& facts = *mInput.facts;
            format = facts.format;
            mGlobals.gsImageDimension = QStringLiteral("Dimension:  %1 X %2 X %3")
                                            .arg(facts.width)
                                            .arg(facts.height)
                                            .arg(facts.bits);
            mGlobals.gsImageFormat = QStringLiteral("Format: ") + FormatDescription(format);
        }
        if (IsImageFile(mFile) == kTrue) {
            FillBox(format);
        }
        if (!mContent.boxText.isEmpty()) {
            if (IsDicomFile(mFile) == kTrue) {
                Print(30, -15, QStringLiteral("DICOM Image Information"));
                mContent.boxText = DicomTagsText(Comments());
            } else {
                Print(-5, -15, QStringLiteral("Image Description Comments/Metadata"));
            }
            mContent.boxVisible = true;
        }
        PrintImageFacts(mInput, ToInt16(mLeft), kPanelFactsBase, mGlobals, mLoop, mContent.lines);
    }

    void FillBox(qint16 format)
    {
        QString& text = mContent.boxText;
        text = QStringLiteral("--------------- Image Description ------------------------")
            + kPanelLineEnd;
        ResumeNext([&] {
            const CommentValue& value = Comments().At(kDescriptionSlot);
            QString description = value.IsEmpty() ? QString() : value.Text();
            text += NormaliseLineEnds(description);
        });
        const bool exif = IsExifFormat(format);
        if (exif || IsTiffFile(mFile) == kTrue || IsPngFile(mFile) == kTrue) {
            text += kPanelLineEnd + GeneralTagsText(mFile, Comments());
        }
        if (exif) {
            text += kPanelLineEnd + CameraTagsText(Comments());
            text += kPanelLineEnd + GpsTagsText(Comments());
        }
    }

    const CommentSet& Comments() const
    {
        static const CommentSet none;
        return mInput.comments ? *mInput.comments : none;
    }

    /// Moves what would stand on something printed before it downwards.
    void SeparateLines()
    {
        QVector<int> order(mContent.lines.size());
        for (int i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            return mContent.lines.at(a).y < mContent.lines.at(b).y;
        });
        int bottom = 0;
        for (const int i : order) {
            PanelLine& line = mContent.lines[i];
            line.y = std::max(line.y, bottom);
            bottom = line.y + kPanelLineHeight;
        }
        if (mContent.boxVisible && bottom > mContent.boxTop) {
            mContent.boxTop = bottom + kPanelBoxGap;
        }
    }

    const DescriptionInput& mInput;
    const QString& mFile;
    Globals& mGlobals;
    UiLoop& mLoop;
    PanelContent mContent;
    int mLeft = 0; ///< x0
};

} // namespace

PanelContent ShowFileBanner(const QString& fileName)
{
    PanelContent content;
    content.banner = LeafName(fileName);
    return content;
}

PanelContent ComposeDescription(const DescriptionInput& input, Globals& globals, UiLoop& loop)
{
    const Hourglass busy(loop);
    return DescriptionRun(input, globals, loop).Run();
}

void PrintImageFacts(const DescriptionInput& input, qint16 x, qint16 y, const Globals& globals,
                     const UiLoop& loop, QVector<PanelLine>& lines)
{
    PrintAt(lines, x, y - 50, globals.gsImageFormat);
    PrintAt(lines, x + 20, y - 30, globals.gsImageDimension);
    QString taken;
    if (IsImageFile(input.fileName) == kTrue && input.comments) {
        ResumeNext([&] { taken = input.comments->At(kDateTakenSlot).Text(); });
    }
    if (!taken.isEmpty()) {
        PrintAt(lines, x + 20, y - 15, QStringLiteral("Date Taken:  ") + FormatExifDateTime(taken));
    }
    // Facts of a file that has gone are left out; a place that does not fit ends the printing.
    QString date, length;
    ResumeNext([&] { date = PanelFileDate(input.stat, loop); });
    ResumeNext([&] { length = PanelFileLength(input.stat); });
    if (!date.isNull()) {
        PrintAt(lines, x + 20, y + 18, QStringLiteral("Modified: ") + date);
    }
    if (!length.isNull()) {
        PrintAt(lines, x + 20, y + 33,
                QStringLiteral("Size: ") + length + QStringLiteral(" Bytes"));
    }
}

} // namespace quillane
