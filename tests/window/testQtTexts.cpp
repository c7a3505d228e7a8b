#include "dlgNameInput.h"
#include "qtTexts.h"
#include "windowFixture.h"

#include <QColorDialog>

/// The texts of Qt's own windows in a program that speaks Chinese.
class TestQtTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingTranslationLeavesTheTextsEnglish();
    void textsAreChineseWhereTheTranslationIsInstalled();
    void questionsOfTheWindowHaveChineseButtons();
    void fileDialogIsChinese();
    void textsOfTheProgramStayAsTheyAre();
};

namespace {

/// The texts of a question's buttons.
QStringList textsOfAQuestion()
{
    const QMessageBox box(QMessageBox::Question, QString(), QString(), QMessageBox::Yes | QMessageBox::No);
    return {box.button(QMessageBox::Yes)->text(), box.button(QMessageBox::No)->text()};
}

}  // namespace

void TestQtTexts::missingTranslationLeavesTheTextsEnglish()
{
    const QTemporaryDir empty;
    QVERIFY(!QtTexts::makeChinese(empty.path()));
    QCOMPARE(textsOfAQuestion(), QStringList({"&Yes", "&No"}));
}

void TestQtTexts::textsAreChineseWhereTheTranslationIsInstalled()
{
    QVERIFY2(QtTexts::makeChinese(), "the package qttranslations5-l10n is not installed");
    QCOMPARE(textsOfAQuestion(), QStringList({QStringLiteral("是(&Y)"), QStringLiteral("否(&N)")}));
}

void TestQtTexts::questionsOfTheWindowHaveChineseButtons()
{
    const WindowFixture fixture;
    QStringList texts;
    QTimer::singleShot(0, this, [&texts] {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        QVERIFY(box != nullptr);
        for (const QAbstractButton* button : box->buttons())
            texts += button->text();
        box->button(QMessageBox::No)->click();
    });
    fixture.trigger("newOption");
    texts.sort();
    QCOMPARE(texts, QStringList({QStringLiteral("否(&N)"), QStringLiteral("是(&Y)")}));
}

void TestQtTexts::fileDialogIsChinese()
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    const auto* const buttons = dialog.findChild<QDialogButtonBox*>();
    QCOMPARE(buttons->button(QDialogButtonBox::Cancel)->text(), QStringLiteral("取消"));
    QCOMPARE(buttons->button(QDialogButtonBox::Open)->text(), QStringLiteral("打开(&O)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QCOMPARE(buttons->button(QDialogButtonBox::Save)->text(), QStringLiteral("保存(&S)"));
}

void TestQtTexts::textsOfTheProgramStayAsTheyAre()
{
    const WindowFixture fixture;
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
    QCOMPARE(fixture.child<QAction>("saveOptionAs")->text(), QStringLiteral("另存为..."));
    const dlgNameInput dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("输入名称"));
    QCOMPARE(dialog.findChild<QPushButton*>(QStringLiteral("btnOK"))->text(), QStringLiteral("确定"));
}

QTEST_MAIN(TestQtTexts)
#include "testQtTexts.moc"
