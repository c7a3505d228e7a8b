#pragma once

#include "drawing/drawing.h"
#include "threadGuards.h"

#include <QMutex>
#include <QObject>
#include <QString>
#include <QStringView>

#include <array>
#include <atomic>
#include <memory>
#include <vector>

class ArithmParamMgr;
class QWidget;

/**
 * Two things that the whole program shares: the readers of tagged text, and the registry through which task threads
 * hand drawing options to the views.
 */
class GlobalFunction : public QObject
{
    Q_OBJECT

public:
    // ---- Tagged text (globalFunction.cpp) --------------------------------------------------------------------------
    // Markers are found without regard to case, each at its first place in the whole text; there is no nesting.

    /// The text between the first opening and the first closing marker; empty when either is missing or out of order.
    static QString getBody(QString text, QString open, QString close);

    /// Where a body lies in a text.
    struct BodyPlace
    {
        int m_nStart = -1;  ///< -1 when there is none.
        int m_nLength = 0;
    };
    /// The place of what getBody returns; takes no memory.
    static BodyPlace findBody(const QString& text, QStringView open, QStringView close);

    /// As getBody, and cuts the element out of the text, its markers included; without a body the text stays as it is.
    static QString getAndRemoveBody(QString& text, QString open, QString close);

    /// Removes spaces, carriage returns and line feeds (and no other blanks) at both ends.
    static void trimString(QString& text);

    /// What trimString would leave of a text.
    static QStringView trimmed(QStringView text);

    // ---- View registry (globalFunctionViews.cpp) -------------------------------------------------------------------

    static constexpr int ViewSlotNum = 6;   ///< Views have the indices 0 to 5; any other index is ignored everywhere.
    static constexpr int QueueLength = 10;  ///< Options that wait for one view at most.

    /// What one view shares with the task threads.
    struct ViewDrawOption
    {
        QMutex m_cMutex;                        ///< Taken with the view's mutex held, so that the record stays.
        int m_nCount GUARDED_BY(m_cMutex) = 0;  ///< Options queued, 0 to QueueLength.
        /// Owned; slot 0 is the oldest.
        std::array<Drawing::DrawingOpt*, QueueLength> m_apcOptions GUARDED_BY(m_cMutex){};
        int m_nCanvasWidth = 0;  ///< Pixels; 0 until the view reports its size. Guarded by the view's mutex.
        int m_nCanvasHeight = 0;

        /// Puts an option at the end; a full queue gives its oldest back, for the caller to delete.
        std::unique_ptr<Drawing::DrawingOpt> append(std::unique_ptr<Drawing::DrawingOpt> option) REQUIRES(m_cMutex);

        /// Takes the oldest option off; null when none waits.
        std::unique_ptr<Drawing::DrawingOpt> takeOldest() REQUIRES(m_cMutex);

        /// Takes every option off that reads from the store; the others keep their order.
        std::vector<std::unique_ptr<Drawing::DrawingOpt>> takeAllOf(const ArithmParamMgr* store) REQUIRES(m_cMutex);
    };

    /// The one instance, made on first use; any thread.
    static GlobalFunction* getInstance();

    void addView(int view, QWidget* widget);  ///< Makes the view's record unless it has one; widget is not kept.
    void removeView(int view);                ///< Destroys the record; options that still wait in it are not deleted.

    /**
     * Borrows the record of a view with the view's mutex held; null, and no mutex held, when there is none.
     * The caller gives it back with releaseViewDrawOption; ViewRecord does so by itself.
     */
    ViewDrawOption* requestViewDrawOption(int view);
    void releaseViewDrawOption(int view, ViewDrawOption* record);

    void resizeViewCanvas(int view, int width, int height);  ///< Pixels; makes the record when there is none.

    /// Deletes every waiting option that reads from the store, in every view, hidden ones too; to be called before a
    /// store dies, on the window's thread.
    void dropOptionsOf(const ArithmParamMgr* store);

    static std::atomic<GlobalFunction*> s_pcInstance;
    static QMutex s_cMtxForIns;  ///< Guards the creation of the instance.

private:
    GlobalFunction() = default;
    ~GlobalFunction() override = default;

    std::atomic<ViewDrawOption*>* slotOf(int view);  ///< Null when there is no such view.
    static GlobalFunction* makeInstance() REQUIRES(s_cMtxForIns);
    void makeRecord(std::atomic<ViewDrawOption*>& slot) REQUIRES(m_cMtxRegistry);
    std::unique_ptr<ViewDrawOption> takeRecord(std::atomic<ViewDrawOption*>& slot)
        REQUIRES(m_cMtxRegistry, m_cMtxViews);
    void noteCanvasSize(ViewDrawOption& record, int width, int height) REQUIRES(m_cMtxViews);

    /// Each is held by whoever uses that view's record. One capability for all, since nobody may hold two at a time.
    struct CAPABILITY("mutex") ViewMutexes
    {
        std::array<QMutex, ViewSlotNum> m_acMutex;
    };
    QMutex& mutexOf(int view) RETURN_CAPABILITY(m_cMtxViews);

    QMutex m_cMtxRegistry ACQUIRED_BEFORE(m_cMtxViews);  ///< Guards making and removing records.
    ViewMutexes m_cMtxViews;
    std::array<std::atomic<ViewDrawOption*>, ViewSlotNum> m_apcRecords{};  ///< Owned; null until the view is added.
};

/// Borrows a view's record for a scope.
class ViewRecord
{
public:
    explicit ViewRecord(int view)
        : m_nView(view), m_pcRecord(GlobalFunction::getInstance()->requestViewDrawOption(view))
    {
    }
    ~ViewRecord() { GlobalFunction::getInstance()->releaseViewDrawOption(m_nView, m_pcRecord); }
    ViewRecord(const ViewRecord&) = delete;
    ViewRecord& operator=(const ViewRecord&) = delete;

    explicit operator bool() const { return m_pcRecord != nullptr; }
    GlobalFunction::ViewDrawOption* operator->() const { return m_pcRecord; }

private:
    int m_nView;
    GlobalFunction::ViewDrawOption* m_pcRecord;  ///< Not owned; null when the view has no record.
};
