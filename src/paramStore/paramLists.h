#pragma once

#include "arithmParam.h"

#include <QByteArray>
#include <QVector>

template <typename Record>
class ParamTable;

/**
 * The list records of a store: points, lines, polygons, areas, strings.
 *
 * How a plug-in fills one: replaceAll() puts a whole new list in place in one step; clear() and append() build it
 * piece by piece. The views draw lists while the task runs, so a step that has its whole result should call
 * replaceAll(): a reader sees the old list or the new one, never a mixture. A reader that wants a consistent list takes
 * a snapshot (getPoints() and its likes); reading element by element follows every change made in between.
 *
 * Threads: every operation may be called from any thread at any time.
 */
class ARITHM_PARAM_API ParamPoints : public ArithmParam
{
public:
    struct Point
    {
        int x;  ///< Picture pixels from the left.
        int y;  ///< Picture pixels from the top.
    };

    int getPointNum() const;
    int getPoint(Point& point, int index) const;  ///< Copies point index out; 1 on success, 0 when there is none.
    QVector<Point> getPoints() const;             ///< A snapshot of the whole list.

    void clear();
    void append(const Point& point);
    void replaceAll(const QVector<Point>& points);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamPoints(int id);
    ARITHM_PARAM_LOCAL ~ParamPoints();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamPoints>;
};

/// A list of line segments. See ParamPoints for filling and threads.
class ARITHM_PARAM_API ParamLines : public ArithmParam
{
public:
    struct Line
    {
        int x1, y1;  ///< Start, picture pixels.
        int x2, y2;  ///< End, picture pixels.
    };

    int getLineNum() const;
    int getLine(Line& line, int index) const;  ///< Copies line index out; 1 on success, 0 when there is none.
    QVector<Line> getLines() const;            ///< A snapshot of the whole list.

    void clear();
    void append(const Line& line);
    void replaceAll(const QVector<Line>& lines);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamLines(int id);
    ARITHM_PARAM_LOCAL ~ParamLines();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamLines>;
};

/// A list of polygons, each a list of vertices. See ParamPoints for filling and threads.
class ARITHM_PARAM_API ParamPolys : public ArithmParam
{
public:
    struct Point
    {
        int x;  ///< Picture pixels from the left.
        int y;  ///< Picture pixels from the top.
    };
    using Poly = QVector<Point>;

    int getPolyNum() const;
    int getPolyVertNum(int poly) const;  ///< Number of vertices; 0 when there is no such polygon.
    int getPolyVert(Point& point, int poly, int vertex) const;  ///< 1 on success, 0 when there is no such vertex.
    QVector<Poly> getPolys() const;                             ///< A snapshot of the whole list.

    void clear();
    void append(const Poly& poly);
    void replaceAll(const QVector<Poly>& polys);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamPolys(int id);
    ARITHM_PARAM_LOCAL ~ParamPolys();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamPolys>;
};

/// A list of found regions. See ParamPoints for filling and threads.
class ARITHM_PARAM_API ParamAreas : public ArithmParam
{
public:
    struct Area
    {
        int label;                     ///< For the step that found the area; the workbench does not use it.
        int top, bottom, left, right;  ///< Bounding box, picture pixels.
        int centerX, centerY;          ///< Centre, picture pixels.
    };

    int getAreaNum() const;
    int getArea(Area& area, int index) const;  ///< Copies area index out; 1 on success, 0 when there is none.
    QVector<Area> getAreas() const;            ///< A snapshot of the whole list.

    void clear();
    void append(const Area& area);
    void replaceAll(const QVector<Area>& areas);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamAreas(int id);
    ARITHM_PARAM_LOCAL ~ParamAreas();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamAreas>;
};

/**
 * A list of byte strings. Their bytes are drawn as Latin-1 and read as UTF-8 where they make up a file name.
 * See ParamPoints for filling and threads.
 */
class ARITHM_PARAM_API ParamStrings : public ArithmParam
{
public:
    int getStringNum() const;
    int getStringLen(int index) const;  ///< Bytes of string index; 0 when there is none.

    /// Copies at most capacity bytes of string index into buffer, without a terminating zero; returns their number.
    int getString(char* buffer, int capacity, int index) const;
    QVector<QByteArray> getStrings() const;  ///< A snapshot of the whole list.

    void clear();
    void append(const QByteArray& string);
    void replaceAll(const QVector<QByteArray>& strings);

private:
    struct Data;
    ARITHM_PARAM_LOCAL explicit ParamStrings(int id);
    ARITHM_PARAM_LOCAL ~ParamStrings();
    ARITHM_PARAM_LOCAL Data* data() const;
    friend class ParamTable<ParamStrings>;
};
