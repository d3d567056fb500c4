#pragma once
#include "viewer/effect_preview.h"
#include "widgets/background_jobs.h"
#include <QObject>

namespace quillane {

/// Keeps the look of an operation up to date while its values change. One computation runs at a
/// time, on another thread; of what is wished meanwhile only the newest is computed then. A draft
/// comes first where there is one; once nothing newer is wished, the look itself follows.
class LivePreview : public QObject {
    Q_OBJECT
public:
    explicit LivePreview(QObject* parent = nullptr);

    /// What the next looks are of. An empty picture: there are none.
    void SetPicture(const Bitmap& picture, const Region& region);
    bool HasPicture() const { return mSource != nullptr; }
    QSize PictureSize() const { return mSource ? mSource->PictureSize() : QSize(); }
    void SetView(const PreviewView& view); ///< what of the picture is to be seen
    const PreviewView& View() const { return mView; }
    void SetWish(EffectWish wish); ///< the operation with its newest values

    const PreviewLook& Look() const { return mLook; }
    /// Whether a newer look is on its way.
    bool Busy() const { return mRunning; }
    /// How many looks have been computed.
    int Computed() const { return mComputed; }

Q_SIGNALS:
    /// Look() is another.
    void Changed();

private:
    void Want();
    void Begin(bool draft);

    std::shared_ptr<PreviewSource> mSource;
    PreviewView mView;
    EffectWish mWish;
    PreviewLook mLook;
    bool mRunning = false;
    bool mWanted = false;
    int mComputed = 0;
    BackgroundJobs mJobs;
};

} // namespace quillane
