#pragma once
// A locale with a decimal comma, made by the test itself as none may be installed.
#include <QByteArray>
#include <QLocale>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace quillane {

/// Puts a locale in force for one test and the one of before back at its end.
class NumberLocale {
public:
    explicit NumberLocale(bool decimalComma) : mBefore(setlocale(LC_ALL, nullptr))
    {
        if (!decimalComma) {
            EXPECT_NE(setlocale(LC_ALL, "C"), nullptr);
            QLocale::setDefault(QLocale::c());
            return;
        }
        const QByteArray folder = QUILLANE_BINARY_FOLDER "/locales";
        const QByteArray made = folder + "/de_DE.UTF-8";
        // localedef answers 1 for mere warnings; what counts is asserted below.
        const QByteArray command = "[ -f '" + made + "/LC_NUMERIC' ] || { mkdir -p '" + folder
            + "' && localedef -i de_DE -f UTF-8 '" + made + "' >/dev/null 2>&1; }";
        [[maybe_unused]] const int answer = std::system(command.constData());
        setenv("LOCPATH", folder.constData(), 1);
        EXPECT_NE(setlocale(LC_ALL, "de_DE.UTF-8"), nullptr) << "package locales is missing";
        unsetenv("LOCPATH");
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        char text[8];
        std::snprintf(text, sizeof text, "%.1f", 1.5);
        EXPECT_STREQ(text, "1,5") << "the decimal comma is not in force";
    }
    ~NumberLocale()
    {
        setlocale(LC_ALL, mBefore.c_str());
        QLocale::setDefault(QLocale::c());
    }
    NumberLocale(const NumberLocale&) = delete;
    NumberLocale& operator=(const NumberLocale&) = delete;

private:
    std::string mBefore;
};

} // namespace quillane
