#include "viewer/general_tags.h"

#include "core/file_kinds.h"

namespace quillane {

namespace {

/// A box and its slots.
struct GeneralTagBox {
    QString GeneralTagTexts::*text;
    qint16 slot;
    qint16 pngSlot;
};
constexpr GeneralTagBox kGeneralTagsFirst[] = {
    {&GeneralTagTexts::txtArtistExif, 0, 0},
    {&GeneralTagTexts::txtCopyrightExif, 1, 1},
    {&GeneralTagTexts::txtMake, 5, 5},
};
constexpr qint16 kGeneralSoftwareSlot = 9;
constexpr qint16 kGeneralDateSlot = 2;
constexpr GeneralTagBox kGeneralTagsLast[] = {
    {&GeneralTagTexts::txtComputer, 4, 175},
    {&GeneralTagTexts::txtModel, 6, 176},
    {&GeneralTagTexts::txtDocument, 7, 178},
    {&GeneralTagTexts::txtPage, 8, 177},
};

void SetGeneralTag(EngineInstance& LEAD1, qint16 slot, const QString& text)
{
    LEAD1.SetComment(slot, text.isEmpty() ? CommentValue() : CommentValue(text));
}

} // namespace

QString GeneralTagDate(const QDateTime& when)
{
    const QDate date = when.date();
    const auto two = [](int number) {
        return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
    };
    return two(date.year() % 100) + QString::number(date.dayOfYear()) + u':' + two(date.month())
        + u':' + two(date.day()) + u' ' + when.time().toString(QStringLiteral("HH:mm:ss"));
}

QString GeneralTagSoftware(const QString& appTitle)
{
    return QStringLiteral("%1.%2.%3 %4")
        .arg(QUILLANE_VERSION_MAJOR)
        .arg(QUILLANE_VERSION_MINOR)
        .arg(QUILLANE_VERSION_REVISION)
        .arg(appTitle);
}

void WriteGeneralTags(EngineInstance& LEAD1, const QString& file, GeneralTagTexts& texts,
                      const UiLoop& loop, const QString& appTitle, bool filled)
{
    if (filled) {
        for (const GeneralTagBox& box : kGeneralTagsFirst) {
            SetGeneralTag(LEAD1, box.slot, texts.*box.text);
        }
    }
    SetGeneralTag(LEAD1, kGeneralSoftwareSlot, GeneralTagSoftware(appTitle));
    if (!filled) {
        return;
    }
    if (texts.txtDateCreated.isEmpty()) {
        texts.txtDateCreated = GeneralTagDate(loop.Now());
    }
    SetGeneralTag(LEAD1, kGeneralDateSlot, texts.txtDateCreated);
    const bool png = IsPngFile(file) == kTrue;
    for (const GeneralTagBox& box : kGeneralTagsLast) {
        SetGeneralTag(LEAD1, png ? box.pngSlot : box.slot, texts.*box.text);
    }
}

} // namespace quillane
