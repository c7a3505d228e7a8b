// What permutations give that take bytes from anywhere in one or two registers: sixteen pixels of a row, the colours of
// sixty-four grey values, and sixty-four pixels that lie over others. Taking grey values is that of AVX2.
#include "pixels/bytesAvx512.h"
#include "pixels/samplingKernels.h"

#if defined(HAS_AVX512)

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

constexpr int Channels = 3;

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

/// A table of colours in registers, a byte of each colour in four of them: so permutations by grey values look them up.
struct LoadedTable
{
    __m512i m_aacQuarters[Channels][4];
};

AVX512_INLINE LoadedTable loadTable(const ColourTable& table)
{
    LoadedTable loaded;
    for (std::size_t channel = 0; channel < Channels; ++channel) {
        for (std::size_t quarter = 0; quarter < 4; ++quarter)
            loaded.m_aacQuarters[channel][quarter] =
                _mm512_loadu_si512(table.m_aaByteOf[channel].data() + quarter * RegisterBytes);
    }
    return loaded;
}

/// The colours of sixty-four grey values.
struct Colours64
{
    __m512i m_acBytes[Channels];  ///< As they stand in the target.
};

AVX512_INLINE Colours64 coloursOf(__m512i values, const LoadedTable& table)
{
    static constexpr std::array<Interleaving, Channels> Parts{interleaving(0), interleaving(1), interleaving(2)};
    const __mmask64 isUpper = _mm512_movepi8_mask(values);
    __m512i bytes[Channels];
    for (int channel = 0; channel < Channels; ++channel) {
        const __m512i(&of)[4] = table.m_aacQuarters[channel];
        bytes[channel] = _mm512_mask_blend_epi8(isUpper, _mm512_permutex2var_epi8(of[0], values, of[1]),
                                                _mm512_permutex2var_epi8(of[2], values, of[3]));
    }
    Colours64 colours;
    for (std::size_t part = 0; part < Parts.size(); ++part) {
        const Interleaving& places = Parts[part];
        const __m512i redGreen = _mm512_permutex2var_epi8(bytes[0], loadBytes(places.m_anFrom), bytes[1]);
        colours.m_acBytes[part] =
            _mm512_mask_permutexvar_epi8(redGreen, places.m_nBlue, loadBytes(places.m_anBlue), bytes[2]);
    }
    return colours;
}

AVX512 void lookUp(const unsigned char* grey, const ColourTable& table, unsigned char* target, std::size_t count)
{
    const LoadedTable loaded = loadTable(table);
    for (; count >= RegisterBytes; count -= RegisterBytes, grey += RegisterBytes, target += Channels * RegisterBytes) {
        const Colours64 found = coloursOf(_mm512_loadu_si512(grey), loaded);
        for (std::size_t part = 0; part < Channels; ++part)
            _mm512_storeu_si512(target + part * RegisterBytes, found.m_acBytes[part]);
    }
    if (count == 0)
        return;
    const Colours64 found = coloursOf(_mm512_maskz_loadu_epi8(firstBytes(count, 0), grey), loaded);
    for (std::size_t part = 0; part < Channels; ++part)
        _mm512_mask_storeu_epi8(target + part * RegisterBytes, firstBytes(3 * count, part), found.m_acBytes[part]);
}

// ---- Overlay --------------------------------------------------------------------------------------------------------

/// Of a part of the target the bytes whose grey value is 0, or the others.
AVX512_INLINE __mmask64 shownBytes(__m512i values, std::size_t part, bool whereZero)
{
    const __m512i bytes = thrice(values, part);
    return whereZero ? _mm512_testn_epi8_mask(bytes, bytes) : _mm512_test_epi8_mask(bytes, bytes);
}

AVX512_INLINE Colours64 loadColours(const unsigned char* rgb)
{
    return {{_mm512_loadu_si512(rgb), _mm512_loadu_si512(rgb + RegisterBytes),
             _mm512_loadu_si512(rgb + 2 * RegisterBytes)}};
}

AVX512_INLINE Colours64 greysOf(__m512i values)
{
    return {{thrice(values, 0), thrice(values, 1), thrice(values, 2)}};
}

/// Sixty-four pixels.
AVX512_INLINE void overlayStep(__m512i values, const Colours64& colours, bool whereZero, unsigned char* target)
{
    for (std::size_t part = 0; part < Channels; ++part, target += RegisterBytes) {
        const __m512i before = _mm512_loadu_si512(target);
        _mm512_storeu_si512(target,
                            _mm512_mask_mov_epi8(before, shownBytes(values, part, whereZero), colours.m_acBytes[part]));
    }
}

/// Fewer; nothing behind them is read or written.
AVX512_INLINE void overlayPart(__m512i values, const Colours64& colours, bool whereZero, unsigned char* target,
                               std::size_t count)
{
    for (std::size_t part = 0; part < Channels; ++part, target += RegisterBytes) {
        const __mmask64 shown = shownBytes(values, part, whereZero) & firstBytes(Channels * count, part);
        _mm512_mask_storeu_epi8(target, shown, colours.m_acBytes[part]);
    }
}

AVX512_INLINE __m512i loadPart(const unsigned char* grey, std::size_t count)
{
    return _mm512_maskz_loadu_epi8(firstBytes(count, 0), grey);
}

AVX512 void overlay(const unsigned char* grey, const unsigned char* rgb, bool whereZero, unsigned char* target,
                    std::size_t count)
{
    for (; count >= RegisterBytes; count -= RegisterBytes, grey += RegisterBytes) {
        overlayStep(_mm512_loadu_si512(grey), loadColours(rgb), whereZero, target);
        rgb += Channels * RegisterBytes;
        target += Channels * RegisterBytes;
    }
    if (count == 0)
        return;
    Colours64 colours;
    for (std::size_t part = 0; part < Channels; ++part)
        colours.m_acBytes[part] =
            _mm512_maskz_loadu_epi8(firstBytes(Channels * count, part), rgb + part * RegisterBytes);
    overlayPart(loadPart(grey, count), colours, whereZero, target, count);
}

AVX512 void overlayColours(const unsigned char* grey, const ColourTable& table, bool whereZero, unsigned char* target,
                           std::size_t count)
{
    const LoadedTable loaded = loadTable(table);
    for (; count >= RegisterBytes; count -= RegisterBytes, grey += RegisterBytes, target += Channels * RegisterBytes) {
        const __m512i values = _mm512_loadu_si512(grey);
        overlayStep(values, coloursOf(values, loaded), whereZero, target);
    }
    if (count == 0)
        return;
    const __m512i values = loadPart(grey, count);
    overlayPart(values, coloursOf(values, loaded), whereZero, target, count);
}

AVX512 void overlayGreys(const unsigned char* grey, bool whereZero, unsigned char* target, std::size_t count)
{
    for (; count >= RegisterBytes; count -= RegisterBytes, grey += RegisterBytes, target += Channels * RegisterBytes) {
        const __m512i values = _mm512_loadu_si512(grey);
        overlayStep(values, greysOf(values), whereZero, target);
    }
    if (count == 0)
        return;
    const __m512i values = loadPart(grey, count);
    overlayPart(values, greysOf(values), whereZero, target, count);
}

}  // namespace

const SamplingKernels* SamplingKernels::avx512()
{
    if (!processorHasAvx512() || !avx2())
        return nullptr;
    static const SamplingKernels kernels{"avx512", colour,         avx2()->m_pfnGrey, overlay,
                                         lookUp,   overlayColours, overlayGreys};
    return &kernels;
}

#else

const SamplingKernels* SamplingKernels::avx512()
{
    return nullptr;
}

#endif
