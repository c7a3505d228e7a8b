#pragma once

#include <QByteArray>
#include <QString>

#include <random>

/// The one source of chance of a soak: the same seed gives the same operations.
class SoakChance
{
public:
    explicit SoakChance(quint64 seed) : m_cEngine(seed) {}

    /// A number from 0 to below - 1.
    int below(int below) { return static_cast<int>(m_cEngine() % static_cast<quint64>(below)); }
    bool oneIn(int n) { return below(n) == 0; }

private:
    std::mt19937_64 m_cEngine;
};

/// Texts of tasks of all kinds, as a project file holds them.
namespace SoakProject {

constexpr int KindNum = 14;

/// Where saving steps write to; made by the caller.
void setScratchFolder(const QString& folder);

/// The body of a task's element: kind 0 to KindNum - 1, details by chance.
QString taskText(const QString& name, int kind, SoakChance& chance);

/// A project with so many tasks, every kind in turn.
QByteArray projectText(int tasks, SoakChance& chance);

}  // namespace SoakProject
