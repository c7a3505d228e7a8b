#pragma once

#include <paramStore/arithmParamMgr.h>

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>

class QDialog;

/// A store that goes with its scope.
struct StoreDeleter
{
    void operator()(ArithmParamMgr* store) const { ArithmParamMgr::deleteInstance(store); }
};
using StorePtr = std::unique_ptr<ArithmParamMgr, StoreDeleter>;
StorePtr newStore();

/// What a test does to a dialog that a plug-in shows; it must close the dialog.
using DialogDriver = std::function<void(QDialog&)>;

/// Drives the next modal dialog; rejects it when the driver leaves it open.
void driveNextDialog(const DialogDriver& driver);

/// One algorithm of the pack, loaded as the workbench loads it. Stays loaded until the process ends.
class AlgorithmLibrary
{
public:
    explicit AlgorithmLibrary(const QString& name);

    QString id() const;
    QString className() const;
    QString displayName() const;
    QString execute(const QString& option, ArithmParamMgr* store) const;

    /// The option text after the driver had its way with the dialog.
    QString configure(const QString& option, ArithmParamMgr* store, const DialogDriver& driver) const;

private:
    const char* (*m_pfnGetID)();
    const char* (*m_pfnGetArithmClass)();
    const char* (*m_pfnGetArithmName)();
    char* (*m_pfnShowConfigWindow)(char*, ArithmParamMgr*, bool);
    char* (*m_pfnExecute)(char*, ArithmParamMgr*);
};

/// A data source of the pack, loaded as the workbench loads it. Stays loaded until the process ends.
class SourceLibrary
{
public:
    explicit SourceLibrary(const QString& name);

    QString configure(const QString& config, const DialogDriver& driver) const;

    const char* (*getDataSourceName)();
    unsigned char* (*requestPicture)(int, const char*, int*, int*);
    void (*releasePicture)(int);
    char* (*showConfigDlg)(char*, bool);
    void (*setConfig)(int, char*);
    void (*start)(int);
    void (*stop)(int);
    void (*removeInstance)(int);
    char* (*getLastError)(int);
};

/// A picture as a source handed it out, copied.
struct Picture
{
    int width = 0;
    int height = 0;
    QByteArray bytes;

    bool isNull() const { return bytes.isNull(); }
    int byteAt(int offset) const { return static_cast<unsigned char>(bytes.at(offset)); }
};

/// One instance of a source, configured; removed at the end of its scope.
class SourceInstance
{
public:
    SourceInstance(const SourceLibrary& library, const QString& config);
    ~SourceInstance();
    SourceInstance(const SourceInstance&) = delete;
    SourceInstance& operator=(const SourceInstance&) = delete;

    void setConfig(const QString& config);
    void start() { m_cLibrary.start(m_nNumber); }
    void stop() { m_cLibrary.stop(m_nNumber); }
    Picture request(const char* type);          ///< Requests, copies and releases; null when none was due.
    Picture waitFor(const char* type = "RGB");  ///< Requests until a picture comes, for some seconds.
    QString lastError() const;
    int number() const { return m_nNumber; }

private:
    const SourceLibrary& m_cLibrary;
    int m_nNumber;
};
