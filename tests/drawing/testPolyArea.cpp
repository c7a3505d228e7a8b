#include "drawing/shapeDrawingOpt.h"

#include <QtTest>

#include <cmath>

/// The areas that are written into polygons.
class TestPolyArea : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void triangleArea_data();
    void triangleArea();
    void roundingMakesCollinearAreasPositive();
    void polygonArea();
};

void TestPolyArea::triangleArea_data()
{
    using Places = QVector<float>;
    QTest::addColumn<Places>("places");
    QTest::addColumn<float>("area");
    QTest::newRow("right angle") << Places{0, 0, 4, 0, 0, 3} << 6.0F;
    QTest::newRow("the other way round") << Places{0, 0, 0, 3, 4, 0} << -6.0F;
    QTest::newRow("collinear") << Places{0, 0, 1, 0, 2, 0} << 0.0F;
    QTest::newRow("away from the origin") << Places{6, 3, 9, 8, 3, 0} << 3.0F;
    QTest::newRow("away from the origin, the other way round") << Places{6, 3, 3, 0, 9, 8} << -3.0F;
    QTest::newRow("one place") << Places{5, 5, 5, 5, 5, 5} << 0.0F;
    // Sides 1/8, 1/8 and a right angle: the product is 2^-14, above 0.0001 only for the next size.
    QTest::newRow("product not above 0.0001 stands for itself") << Places{0, 0, 0.125F, 0, 0, 0.125F} << 0.000061035F;
    QTest::newRow("negative product shortcut") << Places{0, 0, 0, 0.125F, 0.125F, 0} << -0.000061035F;
    QTest::newRow("just above, the root") << Places{0, 0, 0.25F, 0, 0, 0.125F} << 0.015625F;
}

void TestPolyArea::triangleArea()
{
    QFETCH(QVector<float>, places);
    QFETCH(float, area);

    const float result = Drawing::PolysDrawingOpt::getTriangleArea2D(&places[0], &places[2], &places[4]);

    QVERIFY2(std::abs(result - area) <= std::abs(area) * 1e-4F, qPrintable(QString::number(double(result), 'g', 9)));
}

void TestPolyArea::roundingMakesCollinearAreasPositive()
{
    // Without rounding it would be 0.
    float places[] = {0, 0, 4, 12, 11, 33};
    const float area = Drawing::PolysDrawingOpt::getTriangleArea2D(&places[0], &places[2], &places[4]);
    QVERIFY2(area > 0.1F, qPrintable(QString::number(double(area), 'g', 9)));
}

void TestPolyArea::polygonArea()
{
    float square[] = {0, 0, 10, 0, 10, 10, 0, 10};
    QCOMPARE(Drawing::PolysDrawingOpt::getPolyArea2D(square, 4), 100.0F);
    QCOMPARE(Drawing::PolysDrawingOpt::getPolyArea2D(square, 3), 50.0F);
    for (const int n : {2, 1, 0, -1})
        QCOMPARE(Drawing::PolysDrawingOpt::getPolyArea2D(square, n), 0.0F);
    // A dent: the fan takes the triangle beyond it off again.
    float dented[] = {0, 0, 4, 0, 1, 1, 0, 4};
    QVERIFY(std::abs(Drawing::PolysDrawingOpt::getPolyArea2D(dented, 4) - 4.0F) < 0.001F);
}

QTEST_APPLESS_MAIN(TestPolyArea)
#include "testPolyArea.moc"
