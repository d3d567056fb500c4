#include "viewer/ui/effect_dialogs.h"
#include "core/failure.h"
#include "viewer/effect_ranges.h"
#include "viewer/ui/colour_button.h"
#include "viewer/ui/compass.h"
#include "viewer/ui/effect_dialog.h"
#include "viewer/ui/number_row.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QListWidget>
#include <QRadioButton>
#include <algorithm>
#include <memory>

namespace quillane {

namespace {

constexpr int kFilterCode = Qt::UserRole;
constexpr int kFilterRows = 4; // shown at least

QString EffectWords(const char* words)
{
    return EffectDialog::tr(words);
}

/// A box of words that stand for 0, 1, 2...
QComboBox* ChoiceBox(const QString& name, std::span<const char* const> words, int start)
{
    auto* box = new QComboBox;
    box->setObjectName(name);
    for (const char* entry : words) {
        box->addItem(EffectWords(entry));
    }
    box->setCurrentIndex(start < 0 || start >= box->count() ? 0 : start);
    return box;
}

void FollowBox(EffectDialog& dialog, QComboBox* box)
{
    const int start = box->currentIndex();
    dialog.OnReset([box, start] { box->setCurrentIndex(start); });
    QObject::connect(box, &QComboBox::currentIndexChanged, &dialog, &EffectDialog::ValuesChanged);
}

/// Each takes the other along where they would cross, and lets it back to where it was put when
/// there is room again: on the way to "40", "4" is typed.
void CoupleRows(NumberRow* low, NumberRow* high)
{
    struct Wished {
        qint32 low, high;
        bool taking = false;
    };
    const auto wished = std::make_shared<Wished>(Wished{low->Value(), high->Value()});
    QObject::connect(low, &NumberRow::ValueChanged, high, [=](int value) {
        if (!wished->taking) {
            wished->taking = true;
            wished->low = value;
            high->SetValue(std::max(value, wished->high));
            wished->taking = false;
        }
    });
    QObject::connect(high, &NumberRow::ValueChanged, low, [=](int value) {
        if (!wished->taking) {
            wished->taking = true;
            wished->high = value;
            low->SetValue(std::min(value, wished->low));
            wished->taking = false;
        }
    });
}

constexpr const char* kNoiseChannels[] = {"All colors", "Red", "Green", "Blue"};
constexpr const char* kPaletteWords[] = {"Suited to the picture", "The same for every picture",
                                         "Grays"};
constexpr const char* kDitherWords[] = {"None", "Floyd-Steinberg"};

} // namespace

void EffectDialogs::SetPreview(const Bitmap& picture, const Region& region)
{
    mPicture = picture;
    mRegion = region;
}

qint32 EffectDialogs::ValueDialog(QWidget* owner, quint32 flags, qint32 value)
{
    const ValueEffect* effect = FindValueEffect(flags);
    if (!effect) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no such effect of one value."));
    }
    auto* dialog = new EffectDialog(owner, QStringLiteral("ValueDialog"),
                                    EffectWords(effect->title), mPicture, mRegion);
    NumberRow* row = dialog->AddNumber(effect->range, value);
    dialog->SetWish([effect, row] { return WishOf(*effect, row->Value()); });
    qint32 chosen = 0;
    dialog->Run([&] { chosen = row->Value(); });
    return chosen;
}

FilterChoice EffectDialogs::FilterDialog(QWidget* owner, quint32 flags)
{
    const FilterGroup* group = FindFilterGroup(flags);
    if (!group) {
        throw Failure(kFailureGeneral, QStringLiteral("There is no such family of filters."));
    }
    auto* dialog = new EffectDialog(owner, QStringLiteral("FilterDialog"),
                                    EffectWords(group->title), mPicture, mRegion);
    auto* list = new QListWidget;
    list->setObjectName(QStringLiteral("FilterList"));
    list->setUniformItemSizes(true);
    for (const FilterEntry& entry : FiltersOf(*group)) {
        auto* item = new QListWidgetItem(EffectWords(entry.name), list);
        item->setData(kFilterCode, entry.code);
    }
    list->setCurrentRow(0);
    const int rows = std::max(kFilterRows, list->count());
    list->setFixedHeight(list->sizeHintForRow(0) * rows + 2 * list->frameWidth());
    dialog->AddControl(EffectDialog::tr("Fi&lter:"), list);
    list->setFocus();
    const auto code = [list] { return list->currentItem()->data(kFilterCode).toInt(); };
    dialog->OnReset([list] { list->setCurrentRow(0); });
    QObject::connect(list, &QListWidget::currentRowChanged, dialog, &EffectDialog::ValuesChanged);
    QObject::connect(list, &QListWidget::itemDoubleClicked, dialog, &QDialog::accept);
    dialog->SetWish([group, code] { return FilterWish(*group, code()); });
    FilterChoice chosen;
    dialog->Run([&] { (IsBinaryGroup(*group) ? chosen.binary : chosen.spatial) = code(); });
    return chosen;
}

NoiseChoice EffectDialogs::NoiseDialog(QWidget* owner, NoiseChoice start)
{
    auto* dialog = new EffectDialog(owner, QStringLiteral("NoiseDialog"),
                                    EffectDialog::tr("Add Noise"), mPicture, mRegion);
    NumberRow* range = dialog->AddNumber(kNoiseRange, start.range);
    QComboBox* channel = ChoiceBox(QStringLiteral("ChannelBox"), kNoiseChannels, start.channel);
    dialog->AddControl(EffectDialog::tr("C&hannel:"), channel);
    FollowBox(*dialog, channel);
    dialog->SetWish([=] { return NoiseWish(range->Value(), channel->currentIndex()); });
    dialog->Run([&] { start = {range->Value(), channel->currentIndex()}; });
    return start;
}

EmbossChoice EffectDialogs::EmbossDialog(QWidget* owner, EmbossChoice start)
{
    auto* dialog = new EffectDialog(owner, QStringLiteral("EmbossDialog"),
                                    EffectDialog::tr("Emboss"), mPicture, mRegion);
    NumberRow* depth = dialog->AddNumber(kEmbossDepth, start.depth);
    auto* compass = new Compass(start.direction);
    compass->setObjectName(QStringLiteral("Direction"));
    dialog->AddControl(EffectDialog::tr("Light from:"), compass);
    const int direction = compass->Direction();
    dialog->OnReset([=] { compass->SetDirection(direction); });
    QObject::connect(compass, &Compass::DirectionChanged, dialog, &EffectDialog::ValuesChanged);
    dialog->SetWish([=] { return EmbossWish(compass->Direction(), depth->Value()); });
    dialog->Run([&] { start = {compass->Direction(), depth->Value()}; });
    return start;
}

qint32 EffectDialogs::GammaDialog(QWidget* owner, qint32 gamma)
{
    auto* dialog = new EffectDialog(owner, QStringLiteral("GammaDialog"),
                                    EffectDialog::tr("Gamma Correction"), mPicture, mRegion);
    NumberRow* row = dialog->AddNumber(kGammaRange, GammaStart(gamma));
    dialog->SetWish([row] { return GammaWish(row->Value()); });
    dialog->Run([&] { gamma = row->Value(); });
    return gamma;
}

IntensityChoice EffectDialogs::IntensityDialog(QWidget* owner, IntensityChoice start)
{
    auto* dialog = new EffectDialog(owner, QStringLiteral("IntensityDialog"),
                                    EffectDialog::tr("Intensity Detect"), mPicture, mRegion);
    NumberRow* low = dialog->AddNumber(kIntensityLow, std::min(start.low, start.high));
    NumberRow* high = dialog->AddNumber(kIntensityHigh, std::max(start.low, start.high));
    CoupleRows(low, high);
    dialog->SetWish([=] { return IntensityWish(low->Value(), high->Value()); });
    dialog->Run([&] { start = {low->Value(), high->Value()}; });
    return start;
}

ColorDepthChoice EffectDialogs::ColorDepthDialog(QWidget* owner, quint32 /*flags*/)
{
    auto* dialog = new EffectDialog(owner, QStringLiteral("ColorDepthDialog"),
                                    EffectDialog::tr("Change Color Depth"), mPicture, mRegion);
    const std::span<const DepthEntry> depths = DepthEntries();
    auto* bits = new QComboBox;
    bits->setObjectName(QStringLiteral("BitsBox"));
    for (const DepthEntry& entry : depths) {
        bits->addItem(EffectWords(entry.words), entry.bits);
        if (entry.bits == mPicture.Bits() || (mPicture.IsNull() && entry.bits == 24)) {
            bits->setCurrentIndex(bits->count() - 1);
        }
    }
    QComboBox* palette = ChoiceBox(QStringLiteral("PaletteBox"), kPaletteWords, 0);
    QComboBox* dither = ChoiceBox(QStringLiteral("DitherBox"), kDitherWords, 1);
    dialog->AddControl(EffectDialog::tr("&Depth:"), bits);
    dialog->AddControl(EffectDialog::tr("&Palette:"), palette);
    dialog->AddControl(EffectDialog::tr("Di&thering:"), dither);
    const auto enable = [=] {
        const DepthEntry& entry = depths[size_t(bits->currentIndex())];
        palette->setEnabled(entry.hasPalette);
        dither->setEnabled(entry.hasDither);
    };
    QObject::connect(bits, &QComboBox::currentIndexChanged, dialog, enable);
    enable();
    for (QComboBox* box : {bits, palette, dither}) {
        FollowBox(*dialog, box);
    }
    bits->setFocus();
    const auto choice = [=] {
        return ColorDepthChoice{bits->currentData().toInt(), palette->currentIndex(),
                                dither->currentIndex()};
    };
    dialog->SetWish([choice] {
        const ColorDepthChoice now = choice();
        return DepthWish(now.bits, now.palette, now.dither);
    });
    ColorDepthChoice chosen;
    dialog->Run([&] { chosen = choice(); });
    return chosen;
}

ContourValues EffectDialogs::ContourDialog(QWidget* owner, quint32 /*flags*/, qint32 thinning)
{
    ContourValues values{0, thinning, 5, 3};
    auto* dialog = new EffectDialog(owner, QStringLiteral("ContourDialog"),
                                    EffectDialog::tr("Contour Fill"), mPicture, mRegion);
    NumberRow* threshold = dialog->AddNumber(kContourThreshold, values.threshold);
    NumberRow* interval = dialog->AddNumber(kContourInterval, values.interval);
    NumberRow* smoothing = dialog->AddNumber(kContourSmoothing, values.smoothing);
    QComboBox* option = ChoiceBox(QStringLiteral("OptionBox"), ContourOptions(), values.option);
    dialog->AddControl(EffectDialog::tr("&Draw:"), option);
    FollowBox(*dialog, option);
    const auto now = [=] {
        return ContourValues{threshold->Value(), interval->Value(), smoothing->Value(),
                             option->currentIndex()};
    };
    dialog->SetWish([now] {
        const ContourValues chosen = now();
        return ContourWish(chosen.threshold, chosen.interval, chosen.smoothing, chosen.option);
    });
    dialog->Run([&] { values = now(); });
    return values;
}

RotateChoice EffectDialogs::RotateDialog(QWidget* owner, quint32 flags, qint32 angle, qint32 fill)
{
    const bool shears = (flags & kShearFlags) != 0;
    auto* dialog = new EffectDialog(
        owner, shears ? QStringLiteral("ShearDialog") : QStringLiteral("RotateDialog"),
        shears ? EffectDialog::tr("Shear") : EffectDialog::tr("Rotate by Angle"), mPicture,
        mRegion);
    NumberRow* row = dialog->AddNumber(shears ? kShearAngle : kRotateAngle, angle);
    QAbstractButton* option = nullptr;
    if (shears) {
        auto* ways = new QWidget;
        ways->setObjectName(QStringLiteral("Ways"));
        auto* across = new QRadioButton(EffectDialog::tr("&Horizontal"), ways);
        across->setObjectName(QStringLiteral("HorizontalOption"));
        auto* down = new QRadioButton(EffectDialog::tr("&Vertical"), ways);
        down->setObjectName(QStringLiteral("VerticalOption"));
        auto* line = new QHBoxLayout(ways);
        line->setContentsMargins({});
        line->addWidget(across);
        line->addWidget(down);
        line->addStretch(1);
        dialog->AddControl(EffectDialog::tr("Direction:"), ways);
        option = across;
    } else {
        option = new QCheckBox(EffectDialog::tr("&Enlarge the picture to hold all of it"));
        option->setObjectName(QStringLiteral("EnlargeBox"));
        dialog->AddControl({}, option);
    }
    option->setChecked(true);
    auto* colour = new ColourButton(fill);
    colour->setObjectName(QStringLiteral("FillButton"));
    dialog->AddControl(EffectDialog::tr("Corners:"), colour);
    dialog->OnReset([=] {
        option->setChecked(true);
        colour->SetColour(fill);
    });
    QObject::connect(option, &QAbstractButton::toggled, dialog, &EffectDialog::ValuesChanged);
    QObject::connect(colour, &ColourButton::ColourChanged, dialog, &EffectDialog::ValuesChanged);
    const auto now = [=] {
        return RotateChoice{row->Value(), option->isChecked() ? 1 : 0, colour->Colour()};
    };
    dialog->SetWish([now, shears] {
        const RotateChoice chosen = now();
        return shears ? ShearWish(chosen.angle, chosen.option == 1, chosen.fill)
                      : RotateWish(chosen.angle, chosen.option == 1, chosen.fill);
    });
    RotateChoice chosen;
    dialog->Run([&] { chosen = now(); });
    return chosen;
}

} // namespace quillane
