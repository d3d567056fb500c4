#include "imaging/codecs/dxf_player.h"
#include "imaging/codecs/codec_support.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

using drawing::Path;

DxfPlayer::DxfPlayer(QByteArrayView bytes, const DxfTables& tables, drawing::Drawing& drawing,
                     const std::atomic<bool>* cancelled)
    : mBytes(bytes),
      mTables(tables),
      mDrawing(drawing),
      mCancelled(cancelled)
{ }

void DxfPlayer::Play()
{
    if (mTables.entitiesAt >= 0) {
        PlayEntities(mTables.entitiesAt, {});
    }
}

/// Reads the pairs up to the next entity; false at the end of the section, block or file.
bool DxfPlayer::ReadEntity(DxfGroups& groups, DxfEntity& entity)
{
    DxfGroup group;
    entity.groups.clear();
    if (mCancelled && mCancelled->load(std::memory_order_relaxed)) {
        Cancelled();
    }
    do {
        if (++mPairs > kMostPairs) {
            mCutShort = true;
            return false;
        }
        if (!groups.Next(group)) {
            return false;
        }
    } while (group.code != 0);
    entity.kind = group.text;
    if (entity.kind == "ENDSEC" || entity.kind == "ENDBLK" || entity.kind == "EOF") {
        return false;
    }
    while (groups.Next(group)) {
        if (group.code == 0) {
            groups.Back();
            break;
        }
        if (++mPairs > kMostPairs) {
            mCutShort = true;
            return false;
        }
        if (entity.groups.size() < kMostGroups) {
            entity.groups.push_back(group);
        } else {
            mCutShort = true;
        }
    }
    return true;
}

void DxfPlayer::PlayEntities(qsizetype at, const DxfScope& scope)
{
    DxfGroups groups(mBytes);
    groups.Seek(at);
    DxfEntity entity;
    while (!mDrawing.IsFull() && ReadEntity(groups, entity)) {
        PlayEntity(groups, entity, scope);
    }
}

void DxfPlayer::PlayEntity(DxfGroups& groups, const DxfEntity& entity, const DxfScope& scope)
{
    const QByteArrayView kind = entity.kind;
    if (kind == "POLYLINE") {
        PlayPolyline(groups, entity, scope);
        return;
    }
    if (!IsSeen(entity, scope) || PlayCurve(entity, scope) || PlayArea(entity, scope)) {
        return;
    }
    if (kind == "TEXT") {
        PlayText(entity, scope);
    } else if (kind == "ATTRIB") {
        if ((entity.Whole(70) & 1) == 0) {
            PlayText(entity, scope);
        }
    } else if (kind == "MTEXT") {
        PlayParagraph(entity, scope);
    } else if (kind == "INSERT") {
        PlayInsert(entity, scope);
    } else if (kind == "DIMENSION" || kind == "ACAD_TABLE") {
        // How it looks stands in a block of its own, at its place already.
        DxfScope inside = scope;
        inside.blockColour = LookOf(entity, scope).colour;
        ++inside.depth;
        if (kind == "ACAD_TABLE") {
            PlayInsert(entity, scope);
        } else {
            PlayBlock(entity.Text(2), inside);
        }
    }
}

bool DxfPlayer::IsSeen(const DxfEntity& entity, const DxfScope& scope) const
{
    if (entity.Whole(60) == 1 || (scope.depth == 0 && entity.Whole(67) == 1)) {
        return false;
    }
    QByteArray name = DxfKey(entity.Text(8));
    if (name == "0" && !scope.layer.isEmpty()) {
        name = scope.layer;
    }
    const auto layer = mTables.layers.constFind(name);
    return layer == mTables.layers.constEnd() || !layer->hidden;
}

DxfPlayer::Look DxfPlayer::LookOf(const DxfEntity& entity, const DxfScope& scope) const
{
    constexpr int kByBlock = 0, kByLayer = 256;
    QByteArray name = DxfKey(entity.Text(8));
    if (name == "0" && !scope.layer.isEmpty()) {
        name = scope.layer;
    }
    const DxfLayer layer = mTables.layers.value(name);
    const int index = entity.Whole(62, kByLayer);
    Look look;
    look.colour = index == kByBlock ? scope.blockColour
        : index == kByLayer         ? DxfIndexColour(layer.colour)
                                    : DxfIndexColour(std::abs(index));
    if (entity.Has(420)) {
        look.colour = 0xff000000 | (QRgb(entity.Whole(420)) & 0xffffff);
    }
    QByteArray lineType = DxfKey(entity.Text(6));
    if (lineType.isEmpty() || lineType == "BYLAYER") {
        lineType = layer.lineType;
    }
    const auto dashed = mTables.dashed.constFind(lineType);
    look.stroke.style = dashed == mTables.dashed.constEnd() ? Qt::SolidLine
        : *dashed                                           ? Qt::DashDotLine
                                                            : Qt::DashLine;
    look.stroke.colour = look.colour;
    look.fill.style = Qt::SolidPattern;
    look.fill.colour = look.colour;
    return look;
}

void DxfPlayer::Line(Path path, const DxfEntity& entity, const QTransform& place,
                     const DxfScope& scope, double width)
{
    Look look = LookOf(entity, scope);
    const QTransform whole = place * scope.toDrawing;
    if (width > 0) {
        look.stroke.width = width * std::sqrt(std::abs(whole.determinant()));
        look.stroke.cap = Qt::FlatCap;
        look.stroke.join = Qt::MiterJoin;
        look.stroke.style = Qt::SolidLine;
    }
    mDrawing.AddPath(path.Mapped(whole), look.stroke, {});
}

void DxfPlayer::Area(Path path, const DxfEntity& entity, const QTransform& place,
                     const DxfScope& scope)
{
    mDrawing.AddPath(path.Mapped(place * scope.toDrawing), {}, LookOf(entity, scope).fill);
}

void DxfPlayer::PlayInsert(const DxfEntity& entity, const DxfScope& scope)
{
    const auto block = mTables.blocks.constFind(DxfKey(entity.Text(2)));
    if (block == mTables.blocks.constEnd()) {
        return;
    }
    constexpr int kMostRows = 32'767;
    const double xScale = entity.Number(41, 1);
    const double yScale = entity.Number(42, 1);
    const int columns = std::clamp(entity.Whole(70, 1), 1, kMostRows);
    const int rows = std::clamp(entity.Whole(71, 1), 1, kMostRows);
    QTransform turn;
    turn.rotateRadians(entity.Number(50) * M_PI / 180);
    const QTransform plane = DxfPlane(entity, entity.Number(30));
    DxfScope inside = scope;
    inside.blockColour = LookOf(entity, scope).colour;
    const QByteArray layer = DxfKey(entity.Text(8));
    if (layer != "0" || scope.layer.isEmpty()) {
        inside.layer = layer;
    }
    ++inside.depth;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            if (mDrawing.IsFull() || mPairs > kMostPairs) {
                return;
            }
            mPairs += 10; // so that empty blocks cost something too
            const QTransform cell =
                QTransform::fromTranslate(column * entity.Number(44), row * entity.Number(45));
            inside.toDrawing = QTransform::fromTranslate(-block->base.x(), -block->base.y())
                * QTransform::fromScale(xScale, yScale) * cell * turn
                * QTransform::fromTranslate(entity.Number(10), entity.Number(20)) * plane
                * scope.toDrawing;
            PlayBlock(entity.Text(2), inside);
        }
    }
}

void DxfPlayer::PlayBlock(QByteArrayView name, const DxfScope& scope)
{
    const auto block = mTables.blocks.constFind(DxfKey(name));
    if (block == mTables.blocks.constEnd()) {
        return;
    }
    if (scope.depth > kMaxDepth) {
        mCutShort = true;
        return;
    }
    PlayEntities(block->at, scope);
}

QTransform DxfPlane(const DxfEntity& entity, double elevation)
{
    double n[3] = {entity.Number(210, 0), entity.Number(220, 0), entity.Number(230, 1)};
    const double length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (!(length > 1e-9) || (n[0] == 0 && n[1] == 0 && n[2] > 0)) {
        return {};
    }
    for (double& part : n) {
        part /= length;
    }
    // The axes of a plane follow from its normal alone: x is level, seen from the plan's y axis
    // where the normal is nearly upright, from its z axis elsewhere.
    double x[3];
    if (std::abs(n[0]) < 1.0 / 64 && std::abs(n[1]) < 1.0 / 64) {
        x[0] = n[2], x[1] = 0, x[2] = -n[0];
    } else {
        x[0] = -n[1], x[1] = n[0], x[2] = 0;
    }
    const double size = std::sqrt(x[0] * x[0] + x[1] * x[1] + x[2] * x[2]);
    for (double& part : x) {
        part /= size;
    }
    const double y[2] = {n[1] * x[2] - n[2] * x[1], n[2] * x[0] - n[0] * x[2]};
    return {x[0], x[1], y[0], y[1], n[0] * elevation, n[1] * elevation};
}

} // namespace quillane::codecs
