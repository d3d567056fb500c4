#pragma once
// What the makers of older pictures share: rows of indexes, packed in their ways.
#include "legacy_maker.h"

namespace quillane::making {

QByteArray LegacyBytes(int count, char value = '\0');
/// One row's indexes, one byte each.
QByteArray LegacyRow(const IndexMake& make, int y);
/// Indexes in fields of `bits`, the first highest, in whole multiples of `align` bytes.
QByteArray LegacyChunky(const QByteArray& indexes, int bits, int align = 1);
/// Planes of one bit, one behind the other, each in whole multiples of `align` bytes.
QList<QByteArray> LegacyPlanes(const QByteArray& indexes, int planes, int align);
/// Length of the run at a place, at most `most`.
int LegacyRun(const QByteArray& bytes, qsizetype at, int most);
/// The first `count` colours, each as red, green and blue.
QByteArray LegacyColours(const IndexMake& make, int count);
/// A sample of a place and a plane.
int LegacySample(int x, int y, int plane);

} // namespace quillane::making
