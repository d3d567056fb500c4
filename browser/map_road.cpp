#include "browser/map_road.h"

#include "core/file_kinds.h"
#include "core/paths.h"
#include "imaging/comments/slots.h"
#include "imaging/engine.h"
#include "metadata/text_tags.h"
#include "platform/run_aside.h"

namespace quillane {

namespace {

constexpr QSize kMapSmallest{64, 64}; // the pixels are not shown; fewer are read sooner

} // namespace

MapCommand MapRoad(const QString& file, const QString& applicationFolder, UiLoop& loop)
{
    MapCommand command{JoinAsIs(applicationFolder, QStringLiteral("Wayfarix.exe")), {}};
    if (IsImageFile(file) != kTrue) {
        return command;
    }
    const Hourglass busy(loop);
    QString text;
    RunAside(loop, [&] {
        EngineInstance LEAD2;
        DecodeRequest small;
        small.atLeast = kMapSmallest;
        LEAD2.Load(file, 0, 0, 1, small);
        const CommentValue description = LEAD2.ReadComment(file, 0, kDescriptionSlot);
        text = description.IsEmpty() ? QString() : description.Text();
    });
    QString line = file;
    for (const char* tag : {"Lat", "Long", "Elevation"}) {
        line += u' ' + GetTextTag(QLatin1String(tag), text, kFalse);
    }
    command.arguments = line.split(u' ');
    return command;
}

} // namespace quillane
