#pragma once
// The mouse tools of a shown picture: regions, floaters, crop, magnifying glass.
#include "imaging/engine.h"
#include "widgets/ui/engine_view.h"
#include <QObject>

namespace quillane {

/// The shape that a drag will make.
enum class RegionTool : qint16 { None, Rectangle, Ellipse, RoundedRectangle, FreeHand };

/// Joins a view with the instance that it shows: drags make and move regions.
class RegionTools : public QObject {
    Q_OBJECT
public:
    RegionTools(EngineView& view, EngineInstance& LEAD1, QObject* parent = nullptr);
};

} // namespace quillane
