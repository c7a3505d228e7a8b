// An algorithm with hostile texts. Option "kind;bytes": "error", "print", "stop" and "command" (one that never ends)
// return texts of so many bytes, "bytes" one of bytes that are no UTF-8.
#include <lumivant/algorithm.h>

#include <cstdlib>
#include <string>

namespace {

char* kept(const std::string& text)
{
    thread_local std::string t_strKept;
    t_strKept = text;
    return t_strKept.data();
}

}  // namespace

const char* getID()
{
    return "Test.Hostile";
}

/// Not UTF-8 on purpose.
const char* getArithmClass()
{
    return "\xFF\xFE\x80 class";
}

const char* getArithmName()
{
    static const std::string s_strName(2 * 1024 * 1024, 'N');
    return s_strName.c_str();
}

char* showConfigWindow(char*, ArithmParamMgr*, bool)
{
    return kept("\xC3\x28\xF8 option");
}

char* execute(char* option, ArithmParamMgr*)
{
    const std::string text = option;
    const std::size_t semicolon = text.find(';');
    const std::string kind = text.substr(0, semicolon);
    const std::string huge(static_cast<std::size_t>(std::atoll(text.c_str() + semicolon + 1)), 'H');
    if (kind == "error")
        return kept(huge);
    if (kind == "print")
        return kept("<CMD>print:" + huge + "</CMD>");
    if (kind == "stop")
        return kept("<CMD>stop:" + huge + "</CMD>");
    if (kind == "command")
        return kept("<CMD>print:" + huge);
    return kept("\xC0\xAF\xED\xA0\x80\xFF bytes");
}
