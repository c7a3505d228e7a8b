#include "drawing/drawing.h"
#include "globalFunction.h"
#include "saving/savingCanvas.h"
#include "savingSupport.h"
#include "view/viewForm.h"

#include <QElapsedTimer>
#include <QtTest>

#include <atomic>
#include <limits>
#include <thread>

using namespace PictureSupport;
using namespace SavingSupport;

namespace {

constexpr int View = 1;

/// Queues a plain picture that covers the whole view.
void queueColour(ArithmParamMgr& store, QRgb colour)
{
    plainRecord(store, 1, 8, 8, colour);
    execute<Drawing>(QStringLiteral("<View>1</View><DataType>0</DataType><DataID>1</DataID>"
                                    "<Config><Scale>3</Scale><Pos>0</Pos></Config>"),
                     &store);
}

int waiting()
{
    const ViewRecord record(View);
    return record ? record->m_nCount : 0;
}

}  // namespace

class TestSavingCanvas : public QObject
{
    Q_OBJECT

    Store m_cStore;
    std::unique_ptr<Folder> m_pcFolder;
    std::unique_ptr<ViewForm> m_pcView;
    Option m_cOption;  ///< Writes the view's canvas as cam.bmp.

    QImage saved() const { return QImage(m_pcFolder->path("cam.bmp")); }

    /// Runs the step on a thread of its own, as a task does, while the window goes on.
    void saveOnATaskThread()
    {
        std::atomic<bool> done{false};
        std::thread task([&] {
            execute<Saving>(m_cOption.text(), m_cStore.get());
            done = true;
        });
        while (!done)
            QTest::qWait(5);
        task.join();
    }

    /**
     * Keeps the pane from its queue, then lets it take the option and keeps it from its canvas; copies the canvas
     * before the pane wakes up. Where the pane is late and does not get that far, the option waits in the queue.
     */
    QImage canvasTakenFromThePane()
    {
        std::atomic<bool> holdsQueue{false};
        QImage picture;
        std::thread task([&] {
            {
                const ViewRecord record(View);
                holdsQueue = true;
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                m_pcView->requestCanvas();
            }
            for (int i = 0; i < 1000 && waiting() > 0; ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            m_pcView->releaseCanvas();
            picture = SavingCanvas::copyOf(View);
        });
        while (!holdsQueue)
            std::this_thread::yield();
        m_pcView->repaint();
        task.join();
        return picture;
    }

private Q_SLOTS:
    void init()
    {
        m_cStore = makeStore();
        m_pcFolder = std::make_unique<Folder>();
        m_cOption = sameFileOption(m_pcFolder->path());
        m_cOption.wnd = View;
        m_pcView = std::make_unique<ViewForm>(View);
        m_pcView->resize(60, 40);
        GlobalFunction::getInstance()->addView(View, m_pcView.get());
        ViewForm::s_apcViewForms[View] = m_pcView.get();
    }

    void cleanup()
    {
        GlobalFunction::getInstance()->dropOptionsOf(m_cStore.get());
        m_pcView.reset();
        ViewForm::s_apcViewForms[View] = nullptr;
        GlobalFunction::getInstance()->removeView(View);
    }

    void canvasIsSavedOnceThePaneHasDrawnEverything()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        for (QRgb colour : {0xFFFF0000U, 0xFF00FF00U, 0xFF204060U})
            queueColour(*m_cStore, colour);
        saveOnATaskThread();
        QCOMPARE(waiting(), 0);
        QCOMPARE(saved().size(), QSize(60, 40));
        QCOMPARE(saved().pixel(30, 20), qRgb(0x20, 0x40, 0x60));
    }

    void optionBetweenTheQueueAndTheCanvasIsWaitedFor()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        queueColour(*m_cStore, 0xFF010101);
        QTRY_COMPARE(waiting(), 0);
        m_pcView->repaint();
        for (unsigned grey = 10; grey < 25; ++grey) {
            queueColour(*m_cStore, qRgb(static_cast<int>(grey), 0, 0));
            QCOMPARE(qRed(canvasTakenFromThePane().pixel(30, 20)), static_cast<int>(grey));
        }
    }

    void waitForAPaneThatDoesNotDrawEndsAfterASecond()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        m_pcView->hide();
        queueColour(*m_cStore, 0xFFFF0000);
        QElapsedTimer clock;
        clock.start();
        execute<Saving>(m_cOption.text(), m_cStore.get());
        QVERIFY(clock.elapsed() >= 1000);
        QCOMPARE(waiting(), 1);
        QCOMPARE(saved().size(), QSize(60, 40));
    }

    void canvasIsGivenBackWhateverHappens()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        m_cOption.folder = m_pcFolder->path("no/such/folder");
        saveOnATaskThread();
        m_cOption.folder = m_pcFolder->path();
        saveOnATaskThread();
        QVERIFY(m_pcView->requestCanvas());
        m_pcView->releaseCanvas();
        QCOMPARE(m_pcFolder->names(), QStringList{"cam.bmp"});
    }

    void viewThatWasNeverShownWritesNothing()
    {
        // Its canvas has no pixels yet.
        saveOnATaskThread();
        QCOMPARE(m_pcFolder->names(), QStringList());
    }

    void viewWithoutARecordDoesNotWait()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        GlobalFunction::getInstance()->removeView(View);
        // A wait is a second at least; on a busy machine one of some saves is quicker all the same.
        qint64 quickest = std::numeric_limits<qint64>::max();
        for (int attempt = 0; attempt < 20 && quickest >= 900; ++attempt) {
            QElapsedTimer timer;
            timer.start();
            saveOnATaskThread();
            quickest = qMin(quickest, timer.elapsed());
        }
        QCOMPARE(m_pcFolder->names(), QStringList{"cam.bmp"});
        QVERIFY2(quickest < 900, qPrintable(QString::number(quickest)));
    }

    void savedCanvasIsNeverHalfOfAnotherPaint()
    {
        m_pcView->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_pcView.get()));
        queueColour(*m_cStore, 0xFF010101);
        QTRY_COMPARE(waiting(), 0);
        m_pcView->repaint();

        std::atomic<bool> done{false};
        std::atomic<int> mixed{0};
        std::atomic<int> saves{0};
        std::thread painter([&] {
            const Store store = makeStore();
            for (unsigned grey = 1; !done; grey = grey % 255 + 1) {
                queueColour(*store, 0xFF000000U + grey * 0x010101U);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            GlobalFunction::getInstance()->dropOptionsOf(store.get());
        });
        std::thread saver([&] {
            for (int pass = 0; pass < 20; ++pass) {
                execute<Saving>(m_cOption.text(), m_cStore.get());
                const QImage picture = saved();
                saves += picture.size() == QSize(60, 40) ? 1 : 0;
                const QRgb first = picture.pixel(0, 0);
                for (int i = 0; i < 60 * 40; ++i)
                    mixed += picture.pixel(i % 60, i / 60) == first ? 0 : 1;
            }
            done = true;
        });
        while (!done) {
            m_pcView->update();
            QTest::qWait(1);
        }
        saver.join();
        painter.join();
        QCOMPARE(saves.load(), 20);
        QCOMPARE(mixed.load(), 0);
    }
};

QTEST_MAIN(TestSavingCanvas)
#include "testSavingCanvas.moc"
