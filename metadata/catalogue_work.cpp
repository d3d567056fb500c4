#include "metadata/catalogue_work.h"

#include "core/numbers.h"
#include "imaging/comments/text_bytes.h"

namespace quillane {

namespace {

template <typename List> auto WorkElement(const List& list, qsizetype index)
{
    if (index < 0 || index >= list.size()) {
        throw Failure(kFailureIndex, QStringLiteral("The field holds fewer values."));
    }
    return list.at(index);
}

} // namespace

void CatalogueWork::Read(const CommentValue& value, SlotShape shape)
{
    mText.clear();
    mRational.clear();
    ResumeNext([&] {
        switch (shape) {
        case SlotShape::Text:
            mText = value.Text();
            break;
        case SlotShape::Integer:
            mInteger = ToInt16(value.Integer());
            break;
        case SlotShape::Rational:
            mRational = value.Rationals();
            break;
        case SlotShape::RationalTriple:
            mTriple = value.Rationals();
            break;
        case SlotShape::Bytes:
            mBytes = value.Bytes();
            break;
        }
    });
}

int CatalogueWork::ByteAt(qsizetype index) const
{
    return uchar(WorkElement(mBytes, index));
}

QChar CatalogueWork::CharacterAt(qsizetype index) const
{
    return CharacterFromByte(uchar(ByteAt(index)));
}

double CatalogueWork::RationalAt(qsizetype index) const
{
    return WorkElement(mRational, index);
}

double CatalogueWork::TripleAt(qsizetype index) const
{
    return WorkElement(mTriple, index);
}

} // namespace quillane
