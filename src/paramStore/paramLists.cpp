#include "paramLists.h"

#include "paramData.h"
#include "sharedList.h"

#include <algorithm>
#include <cstring>

namespace {

// Bytes of the store's own: the caller's may be a view of memory that it frees.
QByteArray ownBytes(const QByteArray& bytes)
{
    return QByteArray(bytes.constData(), bytes.size());
}

}  // namespace

// Points.

struct ARITHM_PARAM_LOCAL ParamPoints::Data : Private
{
    using Private::Private;
    SharedList<Point> m_lst{m_cMutex};
};

ParamPoints::ParamPoints(int id) : ArithmParam(new Data(id)) {}

ParamPoints::~ParamPoints() = default;

ParamPoints::Data* ParamPoints::data() const
{
    return static_cast<Data*>(m_pcData);
}

int ParamPoints::getPointNum() const
{
    return data()->m_lst.count();
}

int ParamPoints::getPoint(Point& point, int index) const
{
    return data()->m_lst.get(point, index);
}

QVector<ParamPoints::Point> ParamPoints::getPoints() const
{
    return data()->m_lst.snapshot();
}

void ParamPoints::clear()
{
    data()->m_lst.replace({});
}

void ParamPoints::append(const Point& point)
{
    data()->m_lst.append(point);
}

void ParamPoints::replaceAll(const QVector<Point>& points)
{
    data()->m_lst.replace(points);
}

// Lines.

struct ARITHM_PARAM_LOCAL ParamLines::Data : Private
{
    using Private::Private;
    SharedList<Line> m_lst{m_cMutex};
};

ParamLines::ParamLines(int id) : ArithmParam(new Data(id)) {}

ParamLines::~ParamLines() = default;

ParamLines::Data* ParamLines::data() const
{
    return static_cast<Data*>(m_pcData);
}

int ParamLines::getLineNum() const
{
    return data()->m_lst.count();
}

int ParamLines::getLine(Line& line, int index) const
{
    return data()->m_lst.get(line, index);
}

QVector<ParamLines::Line> ParamLines::getLines() const
{
    return data()->m_lst.snapshot();
}

void ParamLines::clear()
{
    data()->m_lst.replace({});
}

void ParamLines::append(const Line& line)
{
    data()->m_lst.append(line);
}

void ParamLines::replaceAll(const QVector<Line>& lines)
{
    data()->m_lst.replace(lines);
}

// Polygons.

struct ARITHM_PARAM_LOCAL ParamPolys::Data : Private
{
    using Private::Private;
    SharedList<Poly> m_lst{m_cMutex};
};

ParamPolys::ParamPolys(int id) : ArithmParam(new Data(id)) {}

ParamPolys::~ParamPolys() = default;

ParamPolys::Data* ParamPolys::data() const
{
    return static_cast<Data*>(m_pcData);
}

int ParamPolys::getPolyNum() const
{
    return data()->m_lst.count();
}

int ParamPolys::getPolyVertNum(int poly) const
{
    return data()->m_lst.with(poly, [](const Poly& found) { return found.size(); });
}

int ParamPolys::getPolyVert(Point& point, int poly, int vertex) const
{
    return data()->m_lst.with(poly, [&point, vertex](const Poly& found) {
        if (vertex < 0 || vertex >= found.size())
            return 0;
        point = found.at(vertex);
        return 1;
    });
}

QVector<ParamPolys::Poly> ParamPolys::getPolys() const
{
    return data()->m_lst.snapshot();
}

void ParamPolys::clear()
{
    data()->m_lst.replace({});
}

void ParamPolys::append(const Poly& poly)
{
    data()->m_lst.append(poly);
}

void ParamPolys::replaceAll(const QVector<Poly>& polys)
{
    data()->m_lst.replace(polys);
}

// Areas.

struct ARITHM_PARAM_LOCAL ParamAreas::Data : Private
{
    using Private::Private;
    SharedList<Area> m_lst{m_cMutex};
};

ParamAreas::ParamAreas(int id) : ArithmParam(new Data(id)) {}

ParamAreas::~ParamAreas() = default;

ParamAreas::Data* ParamAreas::data() const
{
    return static_cast<Data*>(m_pcData);
}

int ParamAreas::getAreaNum() const
{
    return data()->m_lst.count();
}

int ParamAreas::getArea(Area& area, int index) const
{
    return data()->m_lst.get(area, index);
}

QVector<ParamAreas::Area> ParamAreas::getAreas() const
{
    return data()->m_lst.snapshot();
}

void ParamAreas::clear()
{
    data()->m_lst.replace({});
}

void ParamAreas::append(const Area& area)
{
    data()->m_lst.append(area);
}

void ParamAreas::replaceAll(const QVector<Area>& areas)
{
    data()->m_lst.replace(areas);
}

// Strings.

struct ARITHM_PARAM_LOCAL ParamStrings::Data : Private
{
    using Private::Private;
    SharedList<QByteArray> m_lst{m_cMutex};
};

ParamStrings::ParamStrings(int id) : ArithmParam(new Data(id)) {}

ParamStrings::~ParamStrings() = default;

ParamStrings::Data* ParamStrings::data() const
{
    return static_cast<Data*>(m_pcData);
}

int ParamStrings::getStringNum() const
{
    return data()->m_lst.count();
}

int ParamStrings::getStringLen(int index) const
{
    return data()->m_lst.with(index, [](const QByteArray& found) { return found.size(); });
}

int ParamStrings::getString(char* buffer, int capacity, int index) const
{
    if (!buffer || capacity <= 0)
        return 0;
    return data()->m_lst.with(index, [buffer, capacity](const QByteArray& found) {
        const int bytes = std::min(capacity, found.size());
        std::memcpy(buffer, found.constData(), static_cast<std::size_t>(bytes));
        return bytes;
    });
}

QVector<QByteArray> ParamStrings::getStrings() const
{
    return data()->m_lst.snapshot();
}

void ParamStrings::clear()
{
    data()->m_lst.replace({});
}

void ParamStrings::append(const QByteArray& string)
{
    data()->m_lst.append(ownBytes(string));
}

void ParamStrings::replaceAll(const QVector<QByteArray>& strings)
{
    QVector<QByteArray> own;
    own.reserve(strings.size());
    for (const QByteArray& string : strings)
        own.append(ownBytes(string));
    data()->m_lst.replace(own);
}
