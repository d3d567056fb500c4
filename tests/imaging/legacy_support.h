#pragma once
// Runs the readers of older formats by their names on bytes in memory.
#include "codec_support_for_tests.h"
#include "legacy_maker.h"
#include "picture_maker.h"

namespace quillane::making {

inline const Codec& LegacyCodec(const char* name)
{
    for (const Codec& codec : AllCodecs()) {
        if (qstrcmp(codec.name, name) == 0) {
            return codec;
        }
    }
    throw Failure(kFailureGeneral, QStringLiteral("no such codec"));
}

inline ImageFacts LegacyFacts(const char* codec, const QByteArray& bytes)
{
    MemorySource source(bytes);
    return LegacyCodec(codec).probe(source);
}

inline Bitmap LegacyPicture(const char* codec, const QByteArray& bytes, qint32 page = 0)
{
    MemorySource source(bytes);
    DecodeRequest request;
    request.page = page;
    return LegacyCodec(codec).decode(source, request);
}

inline QString LegacyRefusal(const char* codec, const QByteArray& bytes)
{
    return RefusalOf([&] { LegacyPicture(codec, bytes); }).words;
}

/// Pixels that differ from the made picture of indexes.
inline int WrongIndexes(const Bitmap& bitmap, const IndexMake& make)
{
    int wrong = 0;
    for (int y = 0; y < make.height; ++y) {
        for (int x = 0; x < make.width; ++x) {
            wrong += bitmap.Pixels().pixel(x, y) != make.Colour(make.Index(x, y));
        }
    }
    return wrong;
}

/// Pixels that differ by more than `most` from what PlaceColour tells.
inline int WrongPlaces(const Bitmap& bitmap, int most = 0)
{
    int wrong = 0;
    const QImage& image = bitmap.Pixels();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb there = PlaceColour(x, y, image.width(), image.height());
            wrong += ColourDistance(image.pixel(x, y), there) > most;
        }
    }
    return wrong;
}

} // namespace quillane::making
