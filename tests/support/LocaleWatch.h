#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <string>
#include <thread>

namespace kel::test {

/// A host with its own locale, which another thread watches while this exists. Fails if the locale was
/// switched.
class LocaleWatch {
public:
    LocaleWatch() { EXPECT_NE(own, "C"); }
    LocaleWatch(const LocaleWatch&) = delete;
    LocaleWatch& operator=(const LocaleWatch&) = delete;
    ~LocaleWatch()
    {
        isOver = true;
        host.join();
        std::setlocale(LC_ALL, "C");
        EXPECT_EQ(switched, 0) << "looks of another thread saw the locale switched";
    }

private:
    static std::string Current() { return std::setlocale(LC_ALL, nullptr); }

    const std::string own = (std::setlocale(LC_ALL, "German_Germany.1252"), Current());
    std::atomic<bool> isOver = false;
    std::atomic<int> switched = 0;
    std::thread host{[this] {
        while (!isOver)
            switched += Current() != own;
    }};
};

}  // namespace kel::test
