#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <string>

/// Puts the process under a locale with a decimal comma for the length of a scope. Fails the test when that cannot be
/// had.
class DecimalCommaLocale
{
public:
    DecimalCommaLocale()
    {
        std::string pattern = testing::TempDir() + "localeXXXXXX";
        if (!mkdtemp(pattern.data())) {
            ADD_FAILURE() << "no folder " << pattern;
            return;
        }
        folder = pattern;
        const std::string command = "localedef -i de_DE -f UTF-8 '" + folder.string() + "/de_DE.UTF-8'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        setenv("LOCPATH", folder.c_str(), 1);
        EXPECT_TRUE(std::setlocale(LC_ALL, "de_DE.UTF-8"));
        unsetenv("LOCPATH"); // read by setlocale alone; the locales of others stay to be found
        EXPECT_STREQ(std::localeconv()->decimal_point, ",");
    }

    ~DecimalCommaLocale()
    {
        std::setlocale(LC_ALL, "C");
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    DecimalCommaLocale(const DecimalCommaLocale&) = delete;
    DecimalCommaLocale& operator=(const DecimalCommaLocale&) = delete;

private:
    std::filesystem::path folder;
};
