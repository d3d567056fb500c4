// Prints the page FORMATS.md.
#include "formats/formats_page.h"
#include <cstdio>

int main()
{
    const QByteArray page = quillane::FormatsPage().toUtf8();
    return std::fwrite(page.constData(), 1, size_t(page.size()), stdout) == size_t(page.size()) ? 0
                                                                                                : 1;
}
