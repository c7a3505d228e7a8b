#pragma once

#include <QString>

#include <array>
#include <memory>

class ArithmParamMgr;

/**
 * The built-in algorithm "绘制对象": turns an option text into a drawing option and queues it for a view.
 *
 * execute runs on task threads; the options' draw runs on the window's thread.
 */
class Drawing
{
public:
    class DrawingOpt;
    class ImageDrawingOpt;
    class GrayDrawingOpt;
    class DIBDrawingOpt;
    class Gray8DrawingOpt;
    class Gray16DrawingOpt;
    class PointsDrawingOpt;
    class LinesDrawingOpt;
    class PolysDrawingOpt;
    class AreasDrawingOpt;
    class StringsDrawingOpt;

    /// How canvas pixels map to picture pixels in one view: picture = offset + canvas x scale. Window's thread only.
    struct ViewScaleOpt
    {
        float m_fScaleX = 1.0F;
        float m_fScaleY = 1.0F;
        int m_nOffsetX = 0;  ///< Picture pixels.
        int m_nOffsetY = 0;
    };
    static constexpr int ViewScaleNum = 6;
    static std::array<ViewScaleOpt, ViewScaleNum> s_acVSO;  ///< By view index.

    static void resetViewScaleOpt(int view);  ///< Back to scale 1, offset 0; an index outside 0 to 5 is ignored.

    static QString getName();
    static QString getClass();
    static const char* getID();

    /// The edited option text, or the empty text when the step is to keep the one that it has.
    static char* showConfigWindow(char* option, ArithmParamMgr* store, bool);
    static char* execute(char* option, ArithmParamMgr* store);  ///< Always returns the empty text.

    /// The option that a text describes; owned by the caller; null when it describes none.
    static DrawingOpt* parseConfigString(QString text, ArithmParamMgr* store);

    /// See putResultText.
    static char* transConfigStr(QString& text);

    static const char* s_ID;
    static thread_local std::unique_ptr<char[]> s_pchConfigStr;
    static thread_local int s_nBuffLen;
};
