#include "core/failure.h"
#include <utility>

namespace quillane {

Failure::Failure(qint32 number, QString description, QString source)
    : mNumber(number),
      mDescription(std::move(description)),
      mSource(std::move(source)),
      mWhat(mDescription.toUtf8())
{ }

} // namespace quillane
