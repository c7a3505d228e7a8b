// The soak's own steps. Option "role;disk;kind;id;result" with kind RGB or Gray8, id that of the picture's record:
//   stamp    gives the picture its number on the way to a memory disk; stands before the writing step
//   put      stands behind the writing step
//   ended    as an end-of-task step: the same for a pass that was ended by a stop request
//   taken    checks a picture that came from a memory disk
//   last     as an end-of-task step: the same for a picture whose pass was ended by a stop request
//   check    checks a picture that came from a source
//   result   returns what stands last in the option
#include "soakLedger.h"
#include "soakNumber.h"

#include <lumivant/algorithm.h>

#include "arithmParamMgr.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>

namespace {

SoakLedger& ledger()
{
    static auto* const s_pcLedger = new SoakLedger;  // never deleted: tasks may run until the process ends
    return *s_pcLedger;
}

struct Option
{
    std::string m_strRole;
    int m_nDisk = 0;
    bool m_bColour = true;
    int m_nID = 0;
    std::string m_strRest;

    SoakLedger::Pool pool() const { return m_nDisk * 2 + (m_bColour ? 0 : 1); }
};

std::string takeField(std::string& text)
{
    const std::size_t end = std::min(text.find(';'), text.size());
    const std::string field = text.substr(0, end);
    text.erase(0, end + 1);
    return field;
}

/// A project that was saved and opened has line feeds around every option.
std::string trimmed(const std::string& text)
{
    const std::size_t begin = text.find_first_not_of('\n');
    return begin == std::string::npos ? std::string() : text.substr(begin, text.find_last_not_of('\n') + 1 - begin);
}

Option parse(std::string text)
{
    Option option;
    option.m_strRole = takeField(text);
    option.m_nDisk = std::atoi(takeField(text).c_str());
    option.m_bColour = takeField(text) == "RGB";
    option.m_nID = std::atoi(takeField(text).c_str());
    option.m_strRest = text;
    return option;
}

struct Picture
{
    unsigned char* m_pchPixels = nullptr;
    std::size_t m_nBytes = 0;
};

Picture pictureOf(const Option& option, const ArithmParamMgr* store)
{
    if (option.m_bColour) {
        const ParamDIB* record = store->findParamDIB(option.m_nID);
        return record ? Picture{record->getDIB(), soakBytes(true, record->getWidth(), record->getHeight())} : Picture();
    }
    const ParamGray8* record = store->findParamGray8(option.m_nID);
    return record ? Picture{record->getGray8(), soakBytes(false, record->getWidth(), record->getHeight())} : Picture();
}

/// What one run, that is one thread, has seen.
struct Run
{
    std::uint32_t m_nNumber = 0;
    std::map<SoakLedger::Pool, std::uint64_t> m_mapStamped;  ///< Last number that was given, by pool.
    std::map<std::pair<SoakLedger::Pool, std::uint32_t>, std::uint64_t> m_mapTaken;  ///< By pool and writer.
    std::map<std::uint32_t, std::uint64_t> m_mapSequence;                            ///< By source.
};

std::atomic<std::uint32_t> s_nRuns{0};

Run& run()
{
    thread_local Run t_cRun;
    if (t_cRun.m_nNumber == 0)
        t_cRun.m_nNumber = ++s_nRuns;
    return t_cRun;
}

std::string describe(const Option& option, const SoakNumber& number)
{
    return "picture " + std::to_string(number.m_nWritten) + " of run " + std::to_string(number.m_nWriter) +
           " (source " + std::to_string(number.m_nSource) + ", number " + std::to_string(number.m_nSequence) +
           ") on memory disk " + std::to_string(option.m_nDisk) + (option.m_bColour ? " (colour)" : " (grey)");
}

/// The number of the picture; false, and a problem, when it has none or is no whole picture.
bool readWhole(const Option& option, const Picture& picture, SoakNumber& number)
{
    if (!SoakNumber::read(picture.m_pchPixels, picture.m_nBytes, number)) {
        ledger().report("a picture without a number in step " + option.m_strRole);
        return false;
    }
    if (!number.isWhole(picture.m_pchPixels, picture.m_nBytes)) {
        ledger().report("mixed of two: " + describe(option, number));
        return false;
    }
    return true;
}

void checkSource(const Option& option, const Picture& picture)
{
    SoakNumber number;
    if (!readWhole(option, picture, number))
        return;
    std::uint64_t& last = run().m_mapSequence[number.m_nSource];
    if (number.m_nSequence <= last)
        ledger().report("out of order from its source: " + describe(option, number));
    last = number.m_nSequence;
}

void stamp(const Option& option, const Picture& picture)
{
    SoakNumber number;
    if (!readWhole(option, picture, number))
        return;
    number.m_nWriter = run().m_nNumber;
    number.m_nWritten = ledger().enter(option.pool(), number.m_nWriter);
    run().m_mapStamped[option.pool()] = number.m_nWritten;
    number.write(picture.m_pchPixels);
}

void checkTaken(const Option& option, const SoakNumber& number)
{
    if (!ledger().take(option.pool(), number.m_nWriter, number.m_nWritten))
        ledger().report("came twice, or from nowhere: " + describe(option, number));
    std::uint64_t& last = run().m_mapTaken[{option.pool(), number.m_nWriter}];
    if (number.m_nWritten <= last)
        ledger().report("out of order: " + describe(option, number));
    last = number.m_nWritten;
}

void taken(const Option& option, const Picture& picture)
{
    SoakNumber number;
    if (readWhole(option, picture, number))
        checkTaken(option, number);
}

/// The record may hold a picture that was seen before, or what a step has made of it since.
void takenLast(const Option& option, const Picture& picture)
{
    SoakNumber number;
    if (SoakNumber::read(picture.m_pchPixels, picture.m_nBytes, number))
        ledger().take(option.pool(), number.m_nWriter, number.m_nWritten);
}

char* kept(const std::string& text)
{
    thread_local std::string t_strKept;
    t_strKept = text;
    return t_strKept.data();
}

}  // namespace

const char* getID()
{
    return "Soak.Probe";
}

const char* getArithmClass()
{
    return "Soak";
}

const char* getArithmName()
{
    return "Probe";
}

char* showConfigWindow(char* option, ArithmParamMgr*, bool)
{
    return option;
}

char* execute(char* text, ArithmParamMgr* store)
{
    static thread_local const int t_nNamed =
        pthread_setname_np(pthread_self(), ("run " + std::to_string(run().m_nNumber)).c_str());
    static_cast<void>(t_nNamed);
    const Option option = parse(trimmed(text));
    if (option.m_strRole == "stamp")
        stamp(option, pictureOf(option, store));
    else if (option.m_strRole == "put")
        ledger().putThere(option.pool(), run().m_nNumber, run().m_mapStamped[option.pool()], true);
    else if (option.m_strRole == "ended")
        ledger().putThere(option.pool(), run().m_nNumber, run().m_mapStamped[option.pool()], false);
    else if (option.m_strRole == "taken")
        taken(option, pictureOf(option, store));
    else if (option.m_strRole == "last")
        takenLast(option, pictureOf(option, store));
    else if (option.m_strRole == "check")
        checkSource(option, pictureOf(option, store));
    return kept(option.m_strRest);
}

/// @name For the soak itself; see SoakLedger.
/// @{
LUMIVANT_EXPORT void soakTake(int disk, bool colour, const unsigned char* pixels, int width, int height)
{
    Option option;
    option.m_strRole = "drain";
    option.m_nDisk = disk;
    option.m_bColour = colour;
    SoakNumber number;
    if (readWhole(option, {const_cast<unsigned char*>(pixels), soakBytes(colour, width, height)}, number))
        checkTaken(option, number);
}

LUMIVANT_EXPORT void soakExcuse(int disk, bool colour)
{
    ledger().excuseAllOf(disk * 2 + (colour ? 0 : 1));
}

LUMIVANT_EXPORT void soakSee(const std::array<bool, SoakLedger::PoolNum>* hasRoom)
{
    ledger().see(*hasRoom);
}

LUMIVANT_EXPORT void soakClose()
{
    ledger().close();
    run() = Run();  // of the thread that drains the disks
}

LUMIVANT_EXPORT const char* soakProblems()
{
    return kept(ledger().problems());
}

LUMIVANT_EXPORT void soakCounts(SoakLedger::Counts* counts)
{
    *counts = ledger().counts();
}
/// @}
