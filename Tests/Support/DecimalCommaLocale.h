#pragma once

#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <clocale>

/// Puts the process under a locale with a decimal comma for the length of a scope. Fails the test when that cannot be
/// had.
class DecimalCommaLocale
{
public:
    DecimalCommaLocale()
    {
        const std::string command = "localedef -i de_DE -f UTF-8 '" + folder.Path("de_DE.UTF-8") + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        setenv("LOCPATH", folder.GetPath().c_str(), 1);
        EXPECT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
        unsetenv("LOCPATH"); // read by setlocale alone; the locales of others stay to be found
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }
    ~DecimalCommaLocale() { std::setlocale(LC_ALL, "C"); }
    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;

private:
    const TemporaryFolder folder;
};
