#pragma once
#include "imaging/codecs/dxf_tables.h"
#include "imaging/vector/drawn_page.h"

namespace quillane::codecs {

/// Where entities of a block go, and what they take from what inserts it.
struct DxfScope {
    QTransform toDrawing = QTransform::fromScale(1, -1); ///< from the plan, y upwards
    QRgb blockColour = 0xff000000;
    QByteArray layer; ///< of the insertion, for entities of layer 0; empty outside blocks
    int depth = 0;
};

/// Draws the entities of a drawing exchange file as seen from above.
class DxfPlayer {
public:
    DxfPlayer(QByteArrayView bytes, const DxfTables& tables, drawing::Drawing& drawing,
              const std::atomic<bool>* cancelled);
    /// All entities of the model.
    void Play();
    /// Insertions went too deep, or there was too much to draw.
    bool IsCutShort() const { return mCutShort; }

    static constexpr int kMaxDepth = 16;            ///< blocks in blocks
    static constexpr qint64 kMostPairs = 8'000'000; ///< read altogether
    static constexpr size_t kMostGroups = 600'000;  ///< of one entity

private:
    struct Look {
        QRgb colour = 0xff000000;
        drawing::Stroke stroke;
        drawing::Fill fill;
    };
    bool ReadEntity(DxfGroups& groups, DxfEntity& entity);
    void PlayEntities(qsizetype at, const DxfScope& scope);
    void PlayEntity(DxfGroups& groups, const DxfEntity& entity, const DxfScope& scope);
    bool PlayCurve(const DxfEntity& entity, const DxfScope& scope);
    bool PlayArea(const DxfEntity& entity, const DxfScope& scope);
    void PlayPolyline(DxfGroups& groups, const DxfEntity& entity, const DxfScope& scope);
    void PlayMesh(const DxfEntity& entity, const std::vector<DxfEntity>& vertices,
                  const DxfScope& scope);
    void PlayFaces(const DxfEntity& entity, const std::vector<DxfEntity>& vertices,
                   const DxfScope& scope);
    void PlayLightPolyline(const DxfEntity& entity, const DxfScope& scope);
    void PlaySpline(const DxfEntity& entity, const DxfScope& scope);
    void PlayHatch(const DxfEntity& entity, const DxfScope& scope);
    void PlayPattern(const std::vector<DxfGroup>& groups, size_t at, drawing::Path area,
                     const DxfEntity& entity, const DxfScope& scope);
    void PlayText(const DxfEntity& entity, const DxfScope& scope);
    void PlayParagraph(const DxfEntity& entity, const DxfScope& scope);
    void PlayInsert(const DxfEntity& entity, const DxfScope& scope);
    void PlayBlock(QByteArrayView name, const DxfScope& scope);
    Look LookOf(const DxfEntity& entity, const DxfScope& scope) const;
    bool IsSeen(const DxfEntity& entity, const DxfScope& scope) const;
    void Line(drawing::Path path, const DxfEntity& entity, const QTransform& place,
              const DxfScope& scope, double width = 0);
    void Area(drawing::Path path, const DxfEntity& entity, const QTransform& place,
              const DxfScope& scope);
    QByteArrayView mBytes;
    const DxfTables& mTables;
    drawing::Drawing& mDrawing;
    const std::atomic<bool>* mCancelled;
    qint64 mPairs = 0;
    size_t mClipPoints = 0;
    bool mCutShort = false;
};

/// The plane an entity lies in, by the direction it looks to, as seen from above.
QTransform DxfPlane(const DxfEntity& entity, double elevation);
/// Adds a line or, with a bulge (the tangent of a quarter of its angle), an arc.
void AddDxfBulge(drawing::Path& path, QPointF from, QPointF to, double bulge);

struct DxfSpline {
    int degree = 3;
    bool closed = false;
    std::vector<double> knots;
    std::vector<double> weights;
    std::vector<QPointF> points;
};
/// Points along a spline; its control points when its knots make no sense.
std::vector<QPointF> SampleDxfSpline(const DxfSpline& spline);

} // namespace quillane::codecs
