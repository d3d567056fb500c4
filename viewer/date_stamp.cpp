#include "viewer/date_stamp.h"

#include "metadata/exif_date.h"

namespace quillane {

namespace {

constexpr qint16 kTakenSlot = 22; ///< date and time when the picture was taken
constexpr qint32 kStampMargin = 10;
constexpr qint32 kStampRed = 255;
constexpr int kStampPoints = 18;

} // namespace

QString DateStampText(EngineInstance& lead, const QString& file)
{
    QString text;
    ResumeNext([&] {
        const CommentValue taken = lead.ReadComment(file, 0, kTakenSlot);
        if (!taken.IsEmpty() && !taken.Text().isEmpty()) {
            text = FormatExifDateTime(taken.Text());
        }
    });
    return text;
}

void StampText(EngineInstance& lead, const QString& text)
{
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(kStampPoints);
    font.setBold(true);
    lead.SetDrawFont(font);
    lead.SetDrawTextColor(kStampRed);
    lead.SetDrawMode(0);
    lead.SetDrawTransparent(true);
    const qint32 width = lead.MeasureTextWidth(text);
    const qint32 height = lead.MeasureTextHeight(text);
    lead.DrawText(text, lead.BitmapWidth() - (width + kStampMargin),
                  lead.BitmapHeight() - (height + kStampMargin));
}

} // namespace quillane
