#include "verdict/NominalSize.h"

#include <span>

namespace kel {

namespace {

// In GB, ascending.
constexpr int MemorySizes[] = {1,    2,    3,    4,    6,    8,    12,   16,    20,   24,
                               32,   48,   64,   96,   128,  192,  256,  384,   512,  768,
                               1024, 1536, 2048, 3072, 4096, 6144, 8192, 12288, 16384};
constexpr int GraphicsSizes[] = {1, 2, 3, 4, 6, 8, 10, 11, 12, 16, 20, 24, 32, 48, 64, 80, 96, 128, 192, 256};
constexpr int DiskSizes[] = {4,     8,     16,    32,    60,    64,    80,    120,  128,  160,  180,  200,
                             240,   250,   256,   300,   320,   400,   480,   500,  512,  600,  640,  750,
                             800,   900,   960,   1000,  1024,  1200,  1500,  1600, 1800, 1920, 2000, 2048,
                             2400,  3000,  3200,  3840,  4000,  4096,  5000,  6000, 6400, 7680, 8000, 10000,
                             12000, 14000, 15360, 16000, 18000, 20000, 22000, 24000};

// The factor by which a disk's capacity may exceed its nominal size.
constexpr double MaxExcess = 1.001;
constexpr double MinShare = 7.0 / 8;

std::span<const int> UsualSizes(SoldAs soldAs)
{
    switch (soldAs) {
        case SoldAs::Memory:
            return MemorySizes;
        case SoldAs::GraphicsMemory:
            return GraphicsSizes;
        case SoldAs::Disk:
            return DiskSizes;
        case SoldAs::Nothing:
            break;
    }
    return {};
}

/// "512 GB", "1024 GB", "1.92 TB", "1.5 TB".
std::string SizeText(int gigabytes, int step)
{
    const int hundredths = gigabytes * 100 / step;
    if (gigabytes < step || hundredths * step != gigabytes * 100)
        return std::to_string(gigabytes) + " GB";
    std::string text = std::to_string(hundredths / 100);
    if (hundredths % 100 != 0)
        text += "." + std::to_string(hundredths % 100 + 100).substr(1);
    if (hundredths % 10 == 0 && hundredths % 100 != 0)
        text.pop_back();
    return text + " TB";
}

}  // namespace

std::optional<NominalSize> FindNominalSize(const Amount& figure, SoldAs soldAs)
{
    if (figure.kind != AmountKind::Bytes)
        return std::nullopt;
    const int step = soldAs == SoldAs::Disk ? 1000 : 1024;
    // The text of a large disk is coarse: "1.4 TB" is one of 1.5 TB in powers of ten.
    const double lowest =
        soldAs == SoldAs::Disk ? (figure.number - figure.lastDigit / 2) / MaxExcess : figure.number;
    for (const int size : UsualSizes(soldAs)) {
        const double bytes = static_cast<double>(size) * step * step * step;
        if (bytes < lowest)
            continue;
        if (bytes * MinShare > figure.number)
            break;
        return NominalSize{bytes, SizeText(size, step)};
    }
    return std::nullopt;
}

ByteSteps NominalSteps(SoldAs soldAs)
{
    return soldAs == SoldAs::Disk ? ByteSteps::Decimal : ByteSteps::Binary;
}

}  // namespace kel
