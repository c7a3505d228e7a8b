#pragma once

#include "paramLists.h"
#include "paramPictures.h"

#include <QMap>

/**
 * The parameter store of one task: typed records with numeric identifiers that carry data between its steps.
 *
 * Identifiers. getParam…(id) returns the record of its kind under id and makes an empty one when there is none;
 * getParam…(-1) always makes a record under a fresh identifier. Fresh identifiers are unique across the kinds, start at
 * 1 and grow; an identifier that was ever asked for, handed out or reserved is never handed out as fresh again in this
 * store, not even after clean(). Two kinds may hold a record under the same identifier when asked to by number.
 *
 * Threads. A store belongs to one task. Finding a record is safe while another thread makes one. Records are removed
 * (removeParam…, clean, deleteInstance) only while no other thread uses the store, and the maps that requestParam…Map
 * returns are read only while no other thread makes or removes records.
 */
class ARITHM_PARAM_API ArithmParamMgr
{
public:
    ArithmParamMgr(const ArithmParamMgr&) = delete;
    ArithmParamMgr& operator=(const ArithmParamMgr&) = delete;

    static ArithmParamMgr* newInstance();               ///< An empty store; the caller owns it.
    static void deleteInstance(ArithmParamMgr* store);  ///< Destroys a store and all its records; null is ignored.

    void clean();  ///< Removes all records; known identifiers stay known.

    /// Makes an identifier known, so that it is never handed out as fresh.
    void reserveID(int id);

    /// @name The record under id; made when there is none; under a fresh identifier for -1. Never null.
    /// @{
    ParamDIB* getParamDIB(int id);
    ParamGray8* getParamGray8(int id);
    ParamGray16* getParamGray16(int id);
    ParamPoints* getParamPoints(int id);
    ParamLines* getParamLines(int id);
    ParamPolys* getParamPolys(int id);
    ParamAreas* getParamAreas(int id);
    ParamStrings* getParamStrings(int id);
    /// @}

    /// @name The record under id, or null when there is none; never makes one.
    /// @{
    ParamDIB* findParamDIB(int id) const;
    ParamGray8* findParamGray8(int id) const;
    ParamGray16* findParamGray16(int id) const;
    ParamPoints* findParamPoints(int id) const;
    ParamLines* findParamLines(int id) const;
    ParamPolys* findParamPolys(int id) const;
    ParamAreas* findParamAreas(int id) const;
    ParamStrings* findParamStrings(int id) const;
    /// @}

    /// @name Deletes the record under id; nothing happens when there is none.
    /// @{
    void removeParamDIB(int id);
    void removeParamGray8(int id);
    void removeParamGray16(int id);
    void removeParamPoints(int id);
    void removeParamLines(int id);
    void removeParamPolys(int id);
    void removeParamAreas(int id);
    void removeParamStrings(int id);
    /// @}

    /// @name The live map of all records of a kind, in ascending identifier order; not owned by the caller.
    /// @{
    QMap<int, ParamDIB*>* requestParamDIBMap();
    QMap<int, ParamGray8*>* requestParamGray8Map();
    QMap<int, ParamGray16*>* requestParamGray16Map();
    QMap<int, ParamPoints*>* requestParamPointsMap();
    QMap<int, ParamLines*>* requestParamLinesMap();
    QMap<int, ParamPolys*>* requestParamPolysMap();
    QMap<int, ParamAreas*>* requestParamAreasMap();
    QMap<int, ParamStrings*>* requestParamStringsMap();
    /// @}

private:
    ARITHM_PARAM_LOCAL ArithmParamMgr();
    ARITHM_PARAM_LOCAL ~ArithmParamMgr();

    struct Private;
    Private* m_pcData;  ///< Owned; never null.
};
