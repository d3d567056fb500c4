// Text entities of a drawing exchange file.
#include "imaging/codecs/dxf_player.h"
#include <QStringList>
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

namespace {

/// Width of a middling letter against the height of a capital, for breaking lines.
constexpr double kDxfLetterWidth = 0.75;
/// From one base line to the next, against the height of a capital.
constexpr double kDxfLineStep = 5.0 / 3;
/// For the stroked letters that drawings mostly ask for.
constexpr char16_t kDxfFamily[] = u"Arial";

QTransform DxfTextPlace(QPointF at, double turn)
{
    QTransform rotation;
    rotation.rotateRadians(turn);
    return QTransform::fromScale(1, -1) * rotation * QTransform::fromTranslate(at.x(), at.y());
}

/// Breaks lines at blanks so that none has more letters than that.
QStringList DxfWrapped(const QStringList& lines, qsizetype most)
{
    QStringList out;
    for (const QString& line : lines) {
        QString now;
        for (const QString& word : line.split(u' ')) {
            if (!now.isEmpty() && now.size() + 1 + word.size() > most) {
                out += now;
                now.clear();
            }
            now += now.isEmpty() ? word : u' ' + word;
        }
        out += now;
    }
    return out;
}

} // namespace

void DxfPlayer::PlayText(const DxfEntity& entity, const DxfScope& scope)
{
    enum Across { Left, Centre, Right, Aligned, Middle, Fit };
    const int across = entity.Whole(72);
    const int down =
        entity.Has(74) && entity.kind == "ATTRIB" ? entity.Whole(74) : entity.Whole(73);
    const QPointF first(entity.Number(10), entity.Number(20));
    const QPointF second(entity.Number(11), entity.Number(21));
    drawing::TextRun run;
    run.family = QString::fromUtf16(kDxfFamily);
    run.text = DxfText(entity.Text(1), mTables.codePage);
    run.height = std::abs(entity.Number(40, 1));
    run.heightOf = drawing::TextHeight::Capital;
    run.stretch = std::clamp(entity.Number(41, 1), 0.01, 100.0);
    run.colour = LookOf(entity, scope).colour;
    double turn = entity.Number(50) * M_PI / 180;
    QPointF at = first;
    if (across == Aligned || across == Fit) {
        const QPointF way = second - first;
        run.width = std::hypot(way.x(), way.y());
        turn = std::atan2(way.y(), way.x());
    } else if (across != Left || down != 0) {
        at = entity.Has(11) ? second : first;
        run.across = across == Right               ? Qt::AlignRight
            : across == Centre || across == Middle ? Qt::AlignHCenter
                                                   : Qt::AlignLeft;
        run.down = across == Middle || down == 2 ? drawing::TextPlace::Middle
            : down == 3                          ? drawing::TextPlace::Top
            : down == 1                          ? drawing::TextPlace::Bottom
                                                 : drawing::TextPlace::Baseline;
    }
    const int flags = entity.Whole(71);
    QTransform letters = QTransform::fromScale(flags & 2 ? -1 : 1, flags & 4 ? -1 : 1);
    const double slant = std::clamp(entity.Number(51), -80.0, 80.0);
    if (slant != 0) {
        letters = QTransform(1, 0, -std::tan(slant * M_PI / 180), 1, 0, 0) * letters;
    }
    run.place =
        letters * DxfTextPlace(at, turn) * DxfPlane(entity, entity.Number(30)) * scope.toDrawing;
    mDrawing.AddText(std::move(run));
}

void DxfPlayer::PlayParagraph(const DxfEntity& entity, const DxfScope& scope)
{
    QByteArray bytes;
    for (const DxfGroup& group : entity.groups) {
        if (group.code == 3 || group.code == 1) {
            bytes += group.text;
        }
    }
    const double height = std::abs(entity.Number(40, 1));
    if (!(height > 0)) {
        return;
    }
    QStringList lines = DxfLines(DxfText(bytes, mTables.codePage));
    const double room = entity.Number(41);
    if (room > 0) {
        lines = DxfWrapped(lines,
                           qsizetype(std::clamp(room / (height * kDxfLetterWidth), 1.0, 10'000.0)));
    }
    const int attachment = std::clamp(entity.Whole(71, 1), 1, 9) - 1;
    double turn = entity.Number(50) * M_PI / 180;
    if (entity.Has(11)) {
        turn = std::atan2(entity.Number(21), entity.Number(11));
    }
    const double step = height * kDxfLineStep * std::clamp(entity.Number(44, 1), 0.25, 4.0);
    const double whole = height + step * double(lines.size() - 1);
    const double top = attachment / 3 == 0 ? 0 : attachment / 3 == 1 ? whole / 2 : whole;
    const QTransform place = DxfTextPlace({entity.Number(10), entity.Number(20)}, turn)
        * DxfPlane(entity, 0) * scope.toDrawing;
    const Qt::AlignmentFlag sides[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight};
    for (qsizetype i = 0; i < lines.size() && !mDrawing.IsFull(); ++i) {
        drawing::TextRun run;
        run.family = QString::fromUtf16(kDxfFamily);
        run.text = lines[i];
        run.height = height;
        run.heightOf = drawing::TextHeight::Capital;
        run.across = sides[attachment % 3];
        run.colour = LookOf(entity, scope).colour;
        run.place = QTransform::fromTranslate(0, height + step * double(i) - top) * place;
        mDrawing.AddText(std::move(run));
    }
}

} // namespace quillane::codecs
