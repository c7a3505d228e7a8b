#include "arithmParamMgr.h"

#include "paramTable.h"

struct ARITHM_PARAM_LOCAL ArithmParamMgr::Private
{
    Mutex m_cMutex;  ///< Innermost. Guards every table, too.
    ParamIds m_cIds GUARDED_BY(m_cMutex);
    ParamTable<ParamDIB> m_cDIB{m_cMutex, m_cIds};
    ParamTable<ParamGray8> m_cGray8{m_cMutex, m_cIds};
    ParamTable<ParamGray16> m_cGray16{m_cMutex, m_cIds};
    ParamTable<ParamPoints> m_cPoints{m_cMutex, m_cIds};
    ParamTable<ParamLines> m_cLines{m_cMutex, m_cIds};
    ParamTable<ParamPolys> m_cPolys{m_cMutex, m_cIds};
    ParamTable<ParamAreas> m_cAreas{m_cMutex, m_cIds};
    ParamTable<ParamStrings> m_cStrings{m_cMutex, m_cIds};
};

ArithmParamMgr::ArithmParamMgr() : m_pcData(new Private) {}

ArithmParamMgr::~ArithmParamMgr()
{
    delete m_pcData;
}

ArithmParamMgr* ArithmParamMgr::newInstance()
{
    return new ArithmParamMgr;
}

void ArithmParamMgr::deleteInstance(ArithmParamMgr* store)
{
    delete store;
}

void ArithmParamMgr::clean()
{
    m_pcData->m_cDIB.clear();
    m_pcData->m_cGray8.clear();
    m_pcData->m_cGray16.clear();
    m_pcData->m_cPoints.clear();
    m_pcData->m_cLines.clear();
    m_pcData->m_cPolys.clear();
    m_pcData->m_cAreas.clear();
    m_pcData->m_cStrings.clear();
}

void ArithmParamMgr::reserveID(int id)
{
    const Guard lock(m_pcData->m_cMutex);
    m_pcData->m_cIds.know(id);
}

ParamDIB* ArithmParamMgr::getParamDIB(int id)
{
    return m_pcData->m_cDIB.make(id);
}

ParamGray8* ArithmParamMgr::getParamGray8(int id)
{
    return m_pcData->m_cGray8.make(id);
}

ParamGray16* ArithmParamMgr::getParamGray16(int id)
{
    return m_pcData->m_cGray16.make(id);
}

ParamPoints* ArithmParamMgr::getParamPoints(int id)
{
    return m_pcData->m_cPoints.make(id);
}

ParamLines* ArithmParamMgr::getParamLines(int id)
{
    return m_pcData->m_cLines.make(id);
}

ParamPolys* ArithmParamMgr::getParamPolys(int id)
{
    return m_pcData->m_cPolys.make(id);
}

ParamAreas* ArithmParamMgr::getParamAreas(int id)
{
    return m_pcData->m_cAreas.make(id);
}

ParamStrings* ArithmParamMgr::getParamStrings(int id)
{
    return m_pcData->m_cStrings.make(id);
}

ParamDIB* ArithmParamMgr::findParamDIB(int id) const
{
    return m_pcData->m_cDIB.find(id);
}

ParamGray8* ArithmParamMgr::findParamGray8(int id) const
{
    return m_pcData->m_cGray8.find(id);
}

ParamGray16* ArithmParamMgr::findParamGray16(int id) const
{
    return m_pcData->m_cGray16.find(id);
}

ParamPoints* ArithmParamMgr::findParamPoints(int id) const
{
    return m_pcData->m_cPoints.find(id);
}

ParamLines* ArithmParamMgr::findParamLines(int id) const
{
    return m_pcData->m_cLines.find(id);
}

ParamPolys* ArithmParamMgr::findParamPolys(int id) const
{
    return m_pcData->m_cPolys.find(id);
}

ParamAreas* ArithmParamMgr::findParamAreas(int id) const
{
    return m_pcData->m_cAreas.find(id);
}

ParamStrings* ArithmParamMgr::findParamStrings(int id) const
{
    return m_pcData->m_cStrings.find(id);
}

void ArithmParamMgr::removeParamDIB(int id)
{
    m_pcData->m_cDIB.remove(id);
}

void ArithmParamMgr::removeParamGray8(int id)
{
    m_pcData->m_cGray8.remove(id);
}

void ArithmParamMgr::removeParamGray16(int id)
{
    m_pcData->m_cGray16.remove(id);
}

void ArithmParamMgr::removeParamPoints(int id)
{
    m_pcData->m_cPoints.remove(id);
}

void ArithmParamMgr::removeParamLines(int id)
{
    m_pcData->m_cLines.remove(id);
}

void ArithmParamMgr::removeParamPolys(int id)
{
    m_pcData->m_cPolys.remove(id);
}

void ArithmParamMgr::removeParamAreas(int id)
{
    m_pcData->m_cAreas.remove(id);
}

void ArithmParamMgr::removeParamStrings(int id)
{
    m_pcData->m_cStrings.remove(id);
}

QMap<int, ParamDIB*>* ArithmParamMgr::requestParamDIBMap()
{
    return m_pcData->m_cDIB.map();
}

QMap<int, ParamGray8*>* ArithmParamMgr::requestParamGray8Map()
{
    return m_pcData->m_cGray8.map();
}

QMap<int, ParamGray16*>* ArithmParamMgr::requestParamGray16Map()
{
    return m_pcData->m_cGray16.map();
}

QMap<int, ParamPoints*>* ArithmParamMgr::requestParamPointsMap()
{
    return m_pcData->m_cPoints.map();
}

QMap<int, ParamLines*>* ArithmParamMgr::requestParamLinesMap()
{
    return m_pcData->m_cLines.map();
}

QMap<int, ParamPolys*>* ArithmParamMgr::requestParamPolysMap()
{
    return m_pcData->m_cPolys.map();
}

QMap<int, ParamAreas*>* ArithmParamMgr::requestParamAreasMap()
{
    return m_pcData->m_cAreas.map();
}

QMap<int, ParamStrings*>* ArithmParamMgr::requestParamStringsMap()
{
    return m_pcData->m_cStrings.map();
}
