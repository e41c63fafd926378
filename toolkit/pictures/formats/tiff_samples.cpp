// SPDX-License-Identifier: MIT
#include "toolkit/pictures/formats/tiff_samples.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace umbrixlib::toolkit {

namespace {

template <typename Number>
Number load(std::uint8_t const* from)
{
    Number number;
    std::memcpy(&number, from, sizeof number);
    return number;
}

std::uint32_t load_24_bits(std::uint8_t const* from)
{
    bool const little = std::endian::native == std::endian::little;
    auto const byte = [from](int at) { return static_cast<std::uint32_t>(from[at]); };
    return byte(little ? 2 : 0) << 16U | byte(1) << 8U | byte(little ? 0 : 2);
}

/// Calls @p take with each of @p count whole numbers, without their signs.
template <typename Take>
void for_each_number(unsigned bits, std::uint8_t const* row, std::size_t count, Take&& take)
{
    switch (bits) {
    case 8:
        for (std::size_t i = 0; i < count; ++i) {
            take(row[i]);
        }
        return;
    case 16:
        for (std::size_t i = 0; i < count; ++i) {
            take(load<std::uint16_t>(row + 2 * i));
        }
        return;
    case 24:
        for (std::size_t i = 0; i < count; ++i) {
            take(load_24_bits(row + 3 * i));
        }
        return;
    case 32:
        for (std::size_t i = 0; i < count; ++i) {
            take(load<std::uint32_t>(row + 4 * i));
        }
        return;
    default:
        break;
    }
    std::uint64_t held = 0;
    unsigned bits_held = 0;
    for (std::size_t i = 0; i < count; ++i) {
        for (; bits_held < bits; bits_held += 8) {
            held = held << 8U | *row++;
        }
        bits_held -= bits;
        take(static_cast<std::uint32_t>(held >> bits_held & ((std::uint64_t{1} << bits) - 1)));
    }
}

/// Stores samples one behind the other.
template <typename Sample>
class Store {
public:
    explicit Store(std::uint8_t* to) : to_(to) {}

    template <typename Value>
    void operator()(Value value)
    {
        auto const sample = static_cast<Sample>(value);
        std::memcpy(to_, &sample, sizeof sample);
        to_ += sizeof sample;
    }

private:
    std::uint8_t* to_;
};

/// Spreads whole numbers up to that of all bits over all that the sample can hold.
template <typename Sample>
void unpack_unsigned(TiffSamples const& form, std::uint8_t const* row, std::size_t count, std::uint8_t* to)
{
    std::uint32_t const most = 0xffffffffU >> (32 - form.bits);
    std::uint32_t const turn = form.white_is_zero ? most : 0; // most - number is number ^ most
    Store<Sample> store(to);
    if constexpr (std::is_same_v<Sample, float>) {
        for_each_number(form.bits, row, count, [&](std::uint32_t number) {
            store(static_cast<double>(number ^ turn) / static_cast<double>(most));
        });
    } else {
        constexpr std::uint32_t kFull = static_cast<Sample>(-1);
        if (form.indexes || most == kFull) {
            for_each_number(form.bits, row, count, [&](std::uint32_t number) { store(number ^ turn); });
        } else {
            for_each_number(form.bits, row, count, [&](std::uint32_t number) {
                store(((number ^ turn) * kFull + most / 2) / most);
            });
        }
    }
}

void unpack_signed(TiffSamples const& form, std::uint8_t const* row, std::size_t count, std::uint8_t* to)
{
    unsigned const empty_bits = 32 - form.bits;
    double const most = form.bits == 1 ? 1.0 : static_cast<double>(0x7fffffffU >> empty_bits);
    Store<float> store(to);
    for_each_number(form.bits, row, count, [&](std::uint32_t number) {
        store(static_cast<double>(static_cast<std::int32_t>(number << empty_bits) >> empty_bits) / most);
    });
}

/// One bit of sign, 7 of exponent, 16 of fraction.
float float_of_24_bits(std::uint32_t bits)
{
    int const exponent = static_cast<int>(bits >> 16U & 127U);
    std::uint32_t const fraction = bits & 0xffffU;
    std::uint32_t const sign = (bits & 0x800000U) << 8U;
    if (exponent == 127) {
        return std::bit_cast<float>(sign | 0x7f800000U | fraction << 7U);
    }
    float const size = exponent == 0 ? std::ldexp(static_cast<float>(fraction), -78)
                                     : std::ldexp(static_cast<float>(fraction | 0x10000U), exponent - 79);
    return sign != 0 ? -size : size;
}

} // namespace

SampleType TiffSamples::type() const
{
    switch (numbers) {
    case TiffNumbers::kFloat:
        return bits == 16 ? SampleType::kHalf : SampleType::kFloat;
    case TiffNumbers::kSigned:
        return SampleType::kFloat;
    default:
        return bits <= 8 ? SampleType::kUint8 : bits <= 16 ? SampleType::kUint16 : SampleType::kFloat;
    }
}

void unpack(TiffSamples const& form, std::uint8_t const* row, std::size_t count, std::uint8_t* to)
{
    if (form.numbers == TiffNumbers::kSigned) {
        unpack_signed(form, row, count, to);
        return;
    }
    if (form.numbers == TiffNumbers::kFloat) {
        Store<float> store(to);
        if (form.bits == 24) {
            for_each_number(24, row, count, [&](std::uint32_t bits) { store(float_of_24_bits(bits)); });
        } else if (form.bits == 64) {
            for (std::size_t i = 0; i < count; ++i) {
                store(load<double>(row + 8 * i));
            }
        } else {
            std::memcpy(to, row, count * form.bits / 8);
        }
        return;
    }
    bool const as_it_is = (form.bits == 8 || form.bits == 16) && !form.white_is_zero;
    if (as_it_is) {
        std::memcpy(to, row, count * form.bits / 8);
    } else if (form.type() == SampleType::kUint8) {
        unpack_unsigned<std::uint8_t>(form, row, count, to);
    } else if (form.type() == SampleType::kUint16) {
        unpack_unsigned<std::uint16_t>(form, row, count, to);
    } else {
        unpack_unsigned<float>(form, row, count, to);
    }
}

} // namespace umbrixlib::toolkit
