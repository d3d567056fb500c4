#include "imaging/codecs/dxf_tables.h"
#include <algorithm>
#include <cmath>

namespace quillane::codecs {

namespace {

constexpr qsizetype kDxfMostNames = 200'000; ///< layers, blocks or line types

/// Pairs of the header, by the names of its variables.
void DxfReadHeader(DxfGroups& groups, DxfTables& tables)
{
    DxfGroup group;
    QByteArrayView variable;
    double box[4] = {1, 1, 0, 0};
    while (groups.Next(group) && group.code != 0) {
        if (group.code == 9) {
            variable = group.text;
        } else if (variable == "$EXTMIN" && (group.code == 10 || group.code == 20)) {
            box[group.code == 20] = group.Number();
        } else if (variable == "$EXTMAX" && (group.code == 10 || group.code == 20)) {
            box[2 + (group.code == 20)] = group.Number();
        } else if (variable == "$DWGCODEPAGE" && group.code == 3) {
            tables.codePage = group.text.toByteArray().toUpper();
        }
    }
    groups.Back();
    const QRectF extents(QPointF(box[0], box[1]), QPointF(box[2], box[3]));
    if (extents.width() > 0 && extents.height() > 0 && extents.width() < 1e12
        && extents.height() < 1e12) {
        tables.extents = extents;
    }
}

/// Layers and line types: each a run of pairs behind its name.
void DxfReadTable(DxfGroups& groups, DxfTables& tables)
{
    DxfGroup group;
    while (groups.Next(group) && !(group.code == 0 && group.text == "ENDSEC")) {
        if (group.code != 0) {
            continue;
        }
        const QByteArrayView kind = group.text;
        if (kind != "LAYER" && kind != "LTYPE") {
            continue;
        }
        DxfEntity entry;
        while (groups.Next(group) && group.code != 0) {
            if (group.code == 2 || group.code == 6 || group.code == 62 || group.code == 70
                || (group.code == 49 && entry.groups.size() < 64)) {
                entry.groups.push_back(group);
            }
        }
        groups.Back();
        const QByteArray name = DxfKey(entry.Text(2));
        if (kind == "LAYER" && tables.layers.size() < kDxfMostNames) {
            DxfLayer layer;
            layer.colour = std::abs(entry.Whole(62, 7));
            layer.hidden = entry.Whole(62, 7) < 0 || (entry.Whole(70) & 1) != 0;
            layer.lineType = DxfKey(entry.Text(6));
            tables.layers.insert(name, layer);
        } else if (kind == "LTYPE" && tables.dashed.size() < kDxfMostNames && entry.Has(49)) {
            const bool dots =
                std::any_of(entry.groups.begin(), entry.groups.end(), [](const DxfGroup& dash) {
                    return dash.code == 49 && dash.Number() == 0;
                });
            tables.dashed.insert(name, dots);
        }
    }
}

void DxfReadBlocks(DxfGroups& groups, DxfTables& tables)
{
    DxfGroup group;
    while (groups.Next(group) && !(group.code == 0 && group.text == "ENDSEC")) {
        if (group.code != 0 || group.text != "BLOCK") {
            continue;
        }
        DxfBlock block;
        QByteArray name;
        while (groups.Next(group) && group.code != 0) {
            if (group.code == 2) {
                name = DxfKey(group.text);
            } else if (group.code == 10) {
                block.base.setX(group.Number());
            } else if (group.code == 20) {
                block.base.setY(group.Number());
            }
        }
        groups.Back();
        block.at = groups.At();
        if (tables.blocks.size() < kDxfMostNames) {
            tables.blocks.insert(name, block);
        }
    }
}

} // namespace

QRgb DxfIndexColour(int index)
{
    constexpr QRgb kNamed[] = {0xff000000, 0xffff0000, 0xffffff00, 0xff00ff00, 0xff00ffff,
                               0xff0000ff, 0xffff00ff, 0xff000000, 0xff808080, 0xffc0c0c0};
    constexpr int kGreys[] = {51, 91, 132, 173, 214, 255};
    if (index < 10) {
        return kNamed[std::clamp(index, 0, 9)];
    }
    if (index >= 250) {
        const int grey = kGreys[std::min(index, 255) - 250];
        return qRgb(grey, grey, grey);
    }
    // Twenty-four hues, each in five shades, each of those full and mixed with white.
    constexpr int kShades[] = {255, 165, 127, 76, 38};
    const int top = kShades[index % 10 / 2];
    const int low = index % 2 ? top / 2 : 0;
    const double hue = (index / 10 - 1) * 0.25; // sixths of the circle
    const double rest = hue - std::floor(hue);
    const int rising = low + int((top - low) * rest);
    const int falling = low + int((top - low) * (1 - rest));
    switch (int(hue)) {
    case 0:
        return qRgb(top, rising, low);
    case 1:
        return qRgb(falling, top, low);
    case 2:
        return qRgb(low, top, rising);
    case 3:
        return qRgb(low, falling, top);
    case 4:
        return qRgb(rising, low, top);
    default:
        return qRgb(top, low, falling);
    }
}

QByteArray DxfKey(QByteArrayView name)
{
    return name.toByteArray().toUpper();
}

DxfTables ReadDxfTables(QByteArrayView bytes, bool& ended)
{
    DxfTables tables;
    DxfGroups groups(bytes);
    DxfGroup group;
    ended = false;
    while (groups.Next(group)) {
        if (group.code != 0) {
            continue;
        }
        if (group.text == "EOF") {
            ended = true;
            break;
        }
        if (group.text != "SECTION" || !groups.Next(group) || group.code != 2) {
            continue;
        }
        if (group.text == "HEADER") {
            DxfReadHeader(groups, tables);
        } else if (group.text == "TABLES") {
            DxfReadTable(groups, tables);
        } else if (group.text == "BLOCKS") {
            DxfReadBlocks(groups, tables);
        } else if (group.text == "ENTITIES" && tables.entitiesAt < 0) {
            tables.entitiesAt = groups.At();
        }
    }
    return tables;
}

} // namespace quillane::codecs
