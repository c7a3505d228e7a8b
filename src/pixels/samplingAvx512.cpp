// What one permutation gives that takes bytes from anywhere in two registers: sixteen pixels of a row, or the colours
// of sixty-four grey values. The other operations are those of AVX2.
#include "pixels/bytesAvx512.h"
#include "pixels/samplingKernels.h"

#if defined(HAS_AVX512)

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t Step = 2 * ColumnMap::WindowColumns;  // pixels: those of two windows

/// Which place of a step each byte of the target comes from.
constexpr Bytes64 placesOfBytes()
{
    Bytes64 places{};
    for (std::size_t i = 0; i < 3 * Step; ++i)
        places[i] = static_cast<unsigned char>(i / 3);
    return places;
}

/// What is added to three times the place: which byte of the pixel, and in which register its window is.
constexpr Bytes64 bytesOfPixels(bool exchange)
{
    Bytes64 bytes{};
    for (std::size_t i = 0; i < 3 * Step; ++i) {
        const std::size_t byte = exchange ? 2 - i % 3 : i % 3;
        bytes[i] = static_cast<unsigned char>(byte + (i / 3 < ColumnMap::WindowColumns ? 0 : RegisterBytes));
    }
    return bytes;
}

AVX512_INLINE __m512i loadWindow(const unsigned char* row, const ColumnMap::Window& window)
{
    constexpr __mmask64 ItsBytes = (__mmask64{1} << (3 * ColumnMap::WindowBytes)) - 1;
    return _mm512_maskz_loadu_epi8(ItsBytes, row + 3 * static_cast<std::size_t>(window.m_nFirst));
}

AVX512_INLINE __m128i loadPlaces(const ColumnMap::Window& window)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(window.m_anPlaces.data()));
}

AVX512 void colour(const unsigned char* row, const ColumnMap& map, bool exchange, unsigned char* target)
{
    static constexpr Bytes64 Places = placesOfBytes();
    static constexpr Bytes64 AsTheyAre = bytesOfPixels(false);
    static constexpr Bytes64 Exchanged = bytesOfPixels(true);
    constexpr __mmask64 Stored = (__mmask64{1} << (3 * Step)) - 1;
    if (map.windows().empty()) {
        SamplingKernels::ssse3()->m_pfnColour(row, map, exchange, target);
        return;
    }
    const __m512i places = loadBytes(Places);
    const __m512i bytes = loadBytes(exchange ? Exchanged : AsTheyAre);
    std::size_t done = 0;
    const std::vector<ColumnMap::Window>& windows = map.windows();
    for (std::size_t i = 0; i + 2 <= windows.size(); i += 2, done += Step) {
        const __m128i both = _mm_unpacklo_epi64(loadPlaces(windows[i]), loadPlaces(windows[i + 1]));
        const __m512i place = _mm512_maskz_permutexvar_epi8(Stored, places, _mm512_castsi128_si512(both));
        const __m512i from = _mm512_add_epi8(_mm512_add_epi8(place, place), _mm512_add_epi8(place, bytes));
        const __m512i pixels =
            _mm512_permutex2var_epi8(loadWindow(row, windows[i]), from, loadWindow(row, windows[i + 1]));
        _mm512_mask_storeu_epi8(target + 3 * done, Stored, pixels);
    }
    SamplingKernels::plainColourFrom(done, row, map, exchange, target);
}

// ---- Colours of grey values -----------------------------------------------------------------------------------------

constexpr int Quarters = 4;  ///< Registers that hold a byte of each of the 256 colours.
constexpr int Channels = 3;

/// A byte of each colour, so that a permutation by grey values looks them up.
struct Channel
{
    __m512i m_acQuarters[Quarters];
};

/// Where in two registers of colours a channel's bytes are.
constexpr Bytes64 bytesOfChannel(int channel)
{
    Bytes64 bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>((4 * i + static_cast<std::size_t>(channel)) % 128);
    return bytes;
}

AVX512_INLINE void loadChannels(const std::uint32_t* colours, Channel (&channels)[Channels])
{
    static constexpr std::array<Bytes64, Channels> Places{bytesOfChannel(0), bytesOfChannel(1), bytesOfChannel(2)};
    constexpr __mmask64 Upper = ~__mmask64{0} << 32;
    constexpr int Colours = 16;  // in a register
    for (int quarter = 0; quarter < Quarters; ++quarter) {
        __m512i four[4];
        for (int i = 0; i < 4; ++i)
            four[i] = _mm512_loadu_si512(colours + (4 * quarter + i) * Colours);
        for (int channel = 0; channel < Channels; ++channel) {
            const __m512i from = loadBytes(Places[channel]);
            channels[channel].m_acQuarters[quarter] =
                _mm512_mask_blend_epi8(Upper, _mm512_permutex2var_epi8(four[0], from, four[1]),
                                       _mm512_permutex2var_epi8(four[2], from, four[3]));
        }
    }
}

/// Where the bytes of a register of the target come from in those of red and green, and which of them are blue.
struct Interleaving
{
    Bytes64 m_anFrom{};     ///< Among red and green.
    Bytes64 m_anBlue{};     ///< Among blue.
    __mmask64 m_nBlue = 0;  ///< Of the target.
};

constexpr Interleaving interleaving(int part)
{
    Interleaving result;
    for (int i = 0; i < RegisterBytes; ++i) {
        const int pixel = (part * RegisterBytes + i) / 3;
        const int channel = (part * RegisterBytes + i) % 3;
        const auto place = static_cast<std::size_t>(i);
        result.m_anFrom[place] = static_cast<unsigned char>(pixel + (channel == 1 ? RegisterBytes : 0));
        result.m_anBlue[place] = static_cast<unsigned char>(pixel);
        result.m_nBlue |= static_cast<__mmask64>(channel == 2) << i;
    }
    return result;
}

AVX512 void lookUp(const unsigned char* grey, const std::uint32_t* colours, unsigned char* target, std::size_t count)
{
    static constexpr std::array<Interleaving, Channels> Parts{interleaving(0), interleaving(1), interleaving(2)};
    Channel channels[Channels];
    loadChannels(colours, channels);
    for (std::size_t i = 0; i < count; i += RegisterBytes) {
        const std::size_t pixels = std::min<std::size_t>(count - i, RegisterBytes);
        const __m512i values = _mm512_maskz_loadu_epi8(firstBytes(pixels, 0), grey + i);
        const __mmask64 isUpper = _mm512_movepi8_mask(values);
        __m512i bytes[Channels];
        for (int channel = 0; channel < Channels; ++channel) {
            const __m512i(&of)[Quarters] = channels[channel].m_acQuarters;
            bytes[channel] = _mm512_mask_blend_epi8(isUpper, _mm512_permutex2var_epi8(of[0], values, of[1]),
                                                    _mm512_permutex2var_epi8(of[2], values, of[3]));
        }
        for (std::size_t part = 0; part < Parts.size(); ++part) {
            const Interleaving& places = Parts[part];
            const __m512i redGreen = _mm512_permutex2var_epi8(bytes[0], loadBytes(places.m_anFrom), bytes[1]);
            const __m512i all =
                _mm512_mask_permutexvar_epi8(redGreen, places.m_nBlue, loadBytes(places.m_anBlue), bytes[2]);
            _mm512_mask_storeu_epi8(target + 3 * i + part * RegisterBytes, firstBytes(3 * pixels, part), all);
        }
    }
}

}  // namespace

const SamplingKernels* SamplingKernels::avx512()
{
    if (!processorHasAvx512() || !avx2())
        return nullptr;
    static const SamplingKernels kernels{"avx512", colour, avx2()->m_pfnGrey, avx2()->m_pfnOverlay, lookUp};
    return &kernels;
}

#else

const SamplingKernels* SamplingKernels::avx512()
{
    return nullptr;
}

#endif
