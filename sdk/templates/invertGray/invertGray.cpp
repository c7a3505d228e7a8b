// A complete algorithm to copy: makes the negative of an 8-bit grey picture.
//
// Option text: "<InputID>3</InputID><OutputID>4</OutputID>", the numbers of two records of the task's store.
#include <arithmParamMgr.h>
#include <lumivant/algorithm.h>
#include <pictureLayout.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

/// Keeps a returned text alive until the next call on the same thread, as the interface asks for.
char* keepText(const std::string& text)
{
    thread_local std::string s_strKept;
    s_strKept = text;
    return s_strKept.data();
}

/// The record number in an element of the option text; -1, which asks the store for a new one, when there is none.
int readID(const std::string& option, const std::string& tag)
{
    const std::string opening = "<" + tag + ">";
    const std::size_t start = option.find(opening);
    const int id = start == std::string::npos ? -1 : std::atoi(option.c_str() + start + opening.size());
    return id < 1 ? -1 : id;
}

std::string writeOption(int inputID, int outputID)
{
    return "<InputID>" + std::to_string(inputID) + "</InputID><OutputID>" + std::to_string(outputID) + "</OutputID>";
}

/// The output record, labelled: the workbench empties the store from time to time, and names and descriptions go with
/// it.
ParamGray8* makeOutput(ArithmParamMgr* store, int id)
{
    ParamGray8* output = store->getParamGray8(id);
    output->setName(QStringLiteral("灰度取反"));
    output->setDescribe(QStringLiteral("灰度取反的结果"));
    return output;
}

/// Null unless the task has an 8-bit grey picture by now.
ParamGray8* firstGray8(ArithmParamMgr* store)
{
    const QMap<int, ParamGray8*>* pictures = store->requestParamGray8Map();
    return pictures->isEmpty() ? nullptr : pictures->first();
}

}  // namespace

const char* getID()
{
    return "Template_InvertGray";
}

const char* getArithmClass()
{
    return "模板";
}

const char* getArithmName()
{
    return "灰度取反";
}

// A real plug-in shows a dialog here. This one takes the first grey picture as its input. A new step makes its output
// record here, because the option text must name it; a step that has one keeps it, since later steps refer to it.
char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    const ParamGray8* input = firstGray8(store);
    if (!input)
        return keepText("");
    const int inputID = input->getID();
    const int outputID = readID(option, "OutputID");
    const bool usable = outputID != inputID;
    return keepText(writeOption(inputID, makeOutput(store, usable ? outputID : -1)->getID()));
}

char* execute(char* option, ArithmParamMgr* store)
{
    const ParamGray8* input = store->findParamGray8(readID(option, "InputID"));
    if (!input || input->getWidth() < 1)
        return keepText("没有输入图像.");

    const int outputID = readID(option, "OutputID");
    if (outputID < 1)
        return keepText("没有输出图像.");
    ParamGray8* output = makeOutput(store, outputID);
    output->resize(input->getWidth(), input->getHeight());
    if (output->getWidth() != input->getWidth())
        return keepText("内存不足.");

    const unsigned char* from = input->getGray8();
    unsigned char* to = output->getGray8();
    const std::int64_t bytes = PictureLayout::gray8Bytes(output->getWidth(), output->getHeight());
    for (std::int64_t i = 0; i < bytes; ++i)
        to[i] = static_cast<unsigned char>(255 - from[i]);
    return keepText("");
}
