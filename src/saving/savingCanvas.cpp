#include "saving/savingCanvas.h"

#include "globalFunction.h"
#include "threadGuards.h"
#include "view/viewForm.h"

#include <unistd.h>

namespace {

/// Borrows a view's canvas for a scope.
class Canvas
{
public:
    explicit Canvas(ViewForm& view) : m_cView(view), m_pcImage(view.requestCanvas()) {}
    ~Canvas() { m_cView.releaseCanvas(); }
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    const QImage* image() const { return m_pcImage; }

private:
    ViewForm& m_cView;
    const QImage* m_pcImage;  ///< Not owned; may be null.
};

int waitingOptions(int view)
{
    const ViewRecord record(view);
    if (!record)
        return 0;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    return record->m_nCount;
}

/// The option that was taken last does not wait any more, but may not be on the canvas yet.
bool isDrawn(const ViewForm& form, int view)
{
    return waitingOptions(view) < 1 && !form.isDrawing();
}

void waitUntilDrawn(const ViewForm& form, int view)
{
    constexpr int Attempts = 100;
    constexpr useconds_t PauseUs = 10000;
    for (int attempt = 0; attempt < Attempts && !isDrawn(form, view); ++attempt)
        ::usleep(PauseUs);
}

}  // namespace

QImage SavingCanvas::copyOf(int view)
{
    if (view < 0 || view >= ViewForm::ViewNum)
        return {};
    ViewForm* form = ViewForm::s_apcViewForms[static_cast<std::size_t>(view)];
    if (!form)
        return {};
    waitUntilDrawn(*form, view);
    // Copied, not encoded, while the canvas is held: the window paints on while the file is written.
    const Canvas canvas(*form);
    return canvas.image() ? canvas.image()->copy() : QImage();
}
