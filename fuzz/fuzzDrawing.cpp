// Option texts of the drawing algorithm, and what they draw. Input: up to a zero byte option texts, one a line; then
// the size of the canvas and what the store holds.
#include "drawing/drawing.h"
#include "drawing/drawingOpt.h"
#include "fuzzInput.h"
#include "fuzzSupport.h"
#include "globalFunction.h"
#include "naiveText.h"
#include "storeMaker.h"
#include "threadGuards.h"

#include <QImage>

namespace {

constexpr int MostTexts = 5;
constexpr int MostCanvasPixels = 64;  // along a side

/// The number in an element; false when there is none.
bool numberIn(const QString& text, const char* tag, int& number)
{
    bool ok = false;
    number = Naive::element(text, QLatin1String(tag)).toInt(&ok, 10);
    return ok;
}

void expectOption(const QString& text, ArithmParamMgr* store)
{
    int view = 0;
    int type = 0;
    int id = 0;
    numberIn(text, "View", view);
    bool makesOption = numberIn(text, "DataType", type);
    makesOption = numberIn(text, "DataID", id) && makesOption && type >= 0 && type <= 7;
    if (type < 3)  // the store holds one picture of each kind
        makesOption = makesOption && id == type + StoreMaker::Colour;
    const std::unique_ptr<Drawing::DrawingOpt> option(Drawing::parseConfigString(text, store));
    Fuzz::expect((option != nullptr) == makesOption, "an option is made when type and identifier are usable");
    if (!option)
        return;
    Fuzz::expect(option->getDataType() == type && option->getDataID() == id && option->getViewID() == view,
                 "type, identifier and view of an option");
}

void execute(const QByteArray& text, ArithmParamMgr* store)
{
    QByteArray scratch(text.constData(), text.size());
    const char* result = Drawing::execute(scratch.data(), store);
    Fuzz::expect(result && *result == '\0', "drawing always succeeds");
}

/// Draws all that waits for a view, as the view does.
void drawView(int view, QImage& canvas, ArithmParamMgr* store)
{
    const ViewRecord record(view);
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    while (const std::unique_ptr<Drawing::DrawingOpt> option = record->takeOldest()) {
        Fuzz::expect(option->getParamMgr() == store, "an option knows its store");
        option->draw(&canvas, option->getParamMgr());
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/)
{
    Fuzz::startProgram();
    for (int view = 0; view < GlobalFunction::ViewSlotNum; ++view)
        GlobalFunction::getInstance()->addView(view, nullptr);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const QList<QByteArray> texts = input.text().split('\n').mid(0, MostTexts);
    const int width = input.upTo(MostCanvasPixels);
    QImage canvas(width, input.upTo(MostCanvasPixels), QImage::Format_RGB888);
    canvas.fill(0);
    const QSize canvasSize = canvas.size();
    ArithmParamMgr* const store = StoreMaker::make(input);

    for (const QByteArray& text : texts) {
        expectOption(QString::fromUtf8(text), store);
        execute(text, store);
    }
    for (int view = 0; view < GlobalFunction::ViewSlotNum; ++view) {
        drawView(view, canvas, store);
        Drawing::resetViewScaleOpt(view);
    }
    Fuzz::expect(canvas.size() == canvasSize, "the canvas keeps its size");
    ArithmParamMgr::deleteInstance(store);
    return 0;
}
