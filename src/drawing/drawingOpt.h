#pragma once

#include "drawing/drawing.h"

class ArithmParamMgr;
class QImage;

/**
 * One thing to draw onto one view: a copy of a picture, or the name of a list record that is read when it is drawn.
 *
 * Ownership: whoever parsed it, then the queue of its view, then the view that took it off.
 * Threads: made on a task thread, drawn on the window's thread, by one thread at a time.
 */
class Drawing::DrawingOpt
{
public:
    virtual ~DrawingOpt() = default;

    /// Draws onto the canvas; draws nothing when the canvas or the store is null.
    virtual void draw(QImage* canvas, ArithmParamMgr* store) = 0;

    DrawingOpt(const DrawingOpt&) = delete;
    DrawingOpt& operator=(const DrawingOpt&) = delete;

    int getDataType() const { return m_nDataType; }
    int getDataID() const { return m_nDataID; }  ///< The record's identifier in the store.

    void setViewID(int view) { m_nViewID = view; }
    int getViewID() const { return m_nViewID; }

    /// The store of the pass that made the option; null until it is queued; not owned.
    void setParamMgr(ArithmParamMgr* store) { m_pcStore = store; }
    ArithmParamMgr* getParamMgr() const { return m_pcStore; }

protected:
    DrawingOpt(int dataType, int dataId) : m_nDataType(dataType), m_nDataID(dataId) {}

private:
    ArithmParamMgr* m_pcStore = nullptr;
    int m_nDataType;
    int m_nDataID;
    int m_nViewID = 0;
};
