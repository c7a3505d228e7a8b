#pragma once

#include "paramStore/arithmParamMgr.h"

#include <QList>
#include <QString>

#include <functional>

/// One kind of record with its four operations of the store, so that a test can go through all eight.
struct RecordKind
{
    QString name;
    std::function<ArithmParam*(ArithmParamMgr*, int)> get;
    std::function<ArithmParam*(ArithmParamMgr*, int)> find;
    std::function<void(ArithmParamMgr*, int)> remove;
    std::function<QList<int>(ArithmParamMgr*)> ids;  ///< The keys of the kind's live map, in the map's order.
};

template <typename Record>
RecordKind recordKind(const char* name, Record* (ArithmParamMgr::*get)(int), Record* (ArithmParamMgr::*find)(int) const,
                      void (ArithmParamMgr::*remove)(int), QMap<int, Record*>* (ArithmParamMgr::*map)())
{
    return {QString::fromLatin1(name), [get](ArithmParamMgr* store, int id) { return (store->*get)(id); },
            [find](ArithmParamMgr* store, int id) { return (store->*find)(id); },
            [remove](ArithmParamMgr* store, int id) { (store->*remove)(id); },
            [map](ArithmParamMgr* store) { return (store->*map)()->keys(); }};
}

inline const QList<RecordKind>& recordKinds()
{
    using Mgr = ArithmParamMgr;
    static const QList<RecordKind> s_lstKinds = {
        recordKind("ParamDIB", &Mgr::getParamDIB, &Mgr::findParamDIB, &Mgr::removeParamDIB, &Mgr::requestParamDIBMap),
        recordKind("ParamGray8", &Mgr::getParamGray8, &Mgr::findParamGray8, &Mgr::removeParamGray8,
                   &Mgr::requestParamGray8Map),
        recordKind("ParamGray16", &Mgr::getParamGray16, &Mgr::findParamGray16, &Mgr::removeParamGray16,
                   &Mgr::requestParamGray16Map),
        recordKind("ParamPoints", &Mgr::getParamPoints, &Mgr::findParamPoints, &Mgr::removeParamPoints,
                   &Mgr::requestParamPointsMap),
        recordKind("ParamLines", &Mgr::getParamLines, &Mgr::findParamLines, &Mgr::removeParamLines,
                   &Mgr::requestParamLinesMap),
        recordKind("ParamPolys", &Mgr::getParamPolys, &Mgr::findParamPolys, &Mgr::removeParamPolys,
                   &Mgr::requestParamPolysMap),
        recordKind("ParamAreas", &Mgr::getParamAreas, &Mgr::findParamAreas, &Mgr::removeParamAreas,
                   &Mgr::requestParamAreasMap),
        recordKind("ParamStrings", &Mgr::getParamStrings, &Mgr::findParamStrings, &Mgr::removeParamStrings,
                   &Mgr::requestParamStringsMap),
    };
    return s_lstKinds;
}

/// Owns a store for a scope.
struct StoreGuard
{
    StoreGuard() = default;
    ~StoreGuard() { ArithmParamMgr::deleteInstance(store); }
    StoreGuard(const StoreGuard&) = delete;
    StoreGuard& operator=(const StoreGuard&) = delete;
    ArithmParamMgr* operator->() const { return store; }
    operator ArithmParamMgr*() const { return store; }

    ArithmParamMgr* const store = ArithmParamMgr::newInstance();
};
