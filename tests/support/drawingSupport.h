#pragma once

#include "drawing/drawingOpt.h"
#include "paramStore/arithmParamMgr.h"

#include <QImage>
#include <QString>
#include <QtGlobal>

#include <atomic>
#include <cstdio>
#include <memory>

/// What the tests of drawing and of the views share.
namespace DrawingSupport {

struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};
using Store = std::unique_ptr<ArithmParamMgr, StoreDeleter>;

inline Store makeStore()
{
    return Store(ArithmParamMgr::newInstance());
}

using Option = std::unique_ptr<Drawing::DrawingOpt>;

inline Option parse(const char* text, ArithmParamMgr* store)
{
    return Option(Drawing::parseConfigString(QString::fromUtf8(text), store));
}

/// The option as the kind that it is; a null result ends the test by a null access, loudly.
template <typename Kind>
std::unique_ptr<Kind> parseAs(const char* text, ArithmParamMgr* store)
{
    Option option = parse(text, store);
    Kind* kind = dynamic_cast<Kind*>(option.get());
    if (kind)
        option.release();
    return std::unique_ptr<Kind>(kind);
}

inline QImage filledCanvas(int width, int height, QRgb color)
{
    QImage canvas(width, height, QImage::Format_RGB888);
    canvas.fill(QColor::fromRgb(color));
    return canvas;
}

/// Nothing when the pictures agree; otherwise the first place where they do not, in words.
inline QString difference(const QImage& actual, const QImage& expected)
{
    if (actual.size() != expected.size())
        return QStringLiteral("sizes differ");
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb is = actual.pixel(x, y);
            const QRgb should = expected.pixel(x, y);
            if (is != should)
                return QString::asprintf("(%d, %d) is %08x, should be %08x", x, y, is, should);
        }
    }
    return {};
}

/// Puts every view's entry back, so that no test sees what another one recorded.
inline void resetViewScales()
{
    for (int view = 0; view < Drawing::ViewScaleNum; ++view)
        Drawing::resetViewScaleOpt(view);
}

/// Counts what Qt warns of while it lives.
class WarningCounter
{
public:
    WarningCounter() : m_pfnBefore(qInstallMessageHandler(&WarningCounter::count)) { s_nCount = 0; }
    ~WarningCounter() { qInstallMessageHandler(m_pfnBefore); }
    WarningCounter(const WarningCounter&) = delete;
    WarningCounter& operator=(const WarningCounter&) = delete;

    int count() const { return s_nCount; }

private:
    static void count(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
    {
        if (type == QtDebugMsg || type == QtInfoMsg)
            return;
        ++s_nCount;
        std::fprintf(stderr, "warned: %s\n", qPrintable(message));
    }

    static inline std::atomic<int> s_nCount{0};
    QtMessageHandler m_pfnBefore;
};

}  // namespace DrawingSupport
