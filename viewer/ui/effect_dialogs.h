#pragma once
// The dialogs in which a person chooses the values of an operation while the picture shows what
// they would do.
#include "imaging/bitmap.h"
#include "imaging/region.h"

class QWidget;

namespace quillane {

/// High bit of the flag words of most dialogs.
inline constexpr quint32 kDialogHighBit = 0x40000000;

/// The effect that ValueDialog asks the value of.
enum ValueFlag : quint32 {
    kValueSharpen = 1,
    kValueBrightness = 2,
    kValueContrast = 4,
    kValueSaturation = 8,
    kValueHistogramContrast = 16,
    kValueHue = 32,
    kValueHalftone = 64,
    kValuePosterize = 128,
    kValueMosaic = 256,
    kValueAverage = 512,
    kValueMedian = 1024,
};

/// The family of filters that FilterDialog offers.
enum FilterFlag : quint32 {
    kFilterGradient = 1,
    kFilterLaplacian = 2,
    kFilterSobel = 4,
    kFilterPrewitt = 8,
    kFilterShiftDifference = 16,
    kFilterLineSegment = 32,
    kFilterErosion = 64,
    kFilterDilation = 128,
};

inline constexpr quint32 kRotateFlags = 3;             ///< RotateDialog asks for a rotation
inline constexpr quint32 kShearFlags = 4;              ///< RotateDialog asks for a shear
inline constexpr quint32 kColorDepthFlags = 0xFFFFFFD; ///< of ColorDepthDialog
inline constexpr quint32 kContourFlags = 125;          ///< of ContourDialog

struct FilterChoice {
    qint32 spatial = 0; ///< code of EngineInstance::SpatialFilter
    qint32 binary = 0;  ///< code of EngineInstance::BinaryFilter
};
struct NoiseChoice {
    qint32 range = 0;   ///< 0..1000
    qint32 channel = 0; ///< 0 all, 1 red, 2 green, 3 blue
};
struct EmbossChoice {
    qint32 direction = 0; ///< 0 north, clockwise to 7
    qint32 depth = 0;     ///< 0..1000
};
struct IntensityChoice {
    qint32 low = 0;
    qint32 high = 255;
};
struct ColorDepthChoice {
    qint32 bits = 0;
    qint32 palette = 0; ///< processing::PaletteChoice
    qint32 dither = 0;  ///< processing::DitherChoice
};
struct ContourValues {
    qint32 threshold = 0;
    qint32 interval = 0;
    qint32 smoothing = 0;
    qint32 option = 0;
};
struct RotateChoice {
    qint32 angle = 0;  ///< hundredths of a degree
    qint32 option = 0; ///< rotation: 1 lets the picture grow; shear: 1 horizontal
    qint32 fill = 0xFFFFFF;
};

/// LEADDlg1 of the windows: each dialog is modal to its owner and returns what was chosen. Failure
/// kFailureCancelled when it was cancelled.
class EffectDialogs {
public:
    /// The picture whose look the dialogs show, and the part of it that an operation would touch
    /// (an empty region: all of it). An empty picture: no preview.
    void SetPreview(const Bitmap& picture, const Region& region);

    qint32 ValueDialog(QWidget* owner, quint32 flags, qint32 value); ///< the value
    FilterChoice FilterDialog(QWidget* owner, quint32 flags);
    NoiseChoice NoiseDialog(QWidget* owner, NoiseChoice start);
    EmbossChoice EmbossDialog(QWidget* owner, EmbossChoice start);
    qint32 GammaDialog(QWidget* owner, qint32 gamma); ///< in hundredths
    IntensityChoice IntensityDialog(QWidget* owner, IntensityChoice start);
    ColorDepthChoice ColorDepthDialog(QWidget* owner, quint32 flags);
    ContourValues ContourDialog(QWidget* owner, quint32 flags, qint32 thinning);
    RotateChoice RotateDialog(QWidget* owner, quint32 flags, qint32 angle, qint32 fill);

private:
    Bitmap mPicture;
    Region mRegion;
};

} // namespace quillane
