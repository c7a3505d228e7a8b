#pragma once

#include "instanceTable.h"
#include "resultBuffer.h"

#include <QDialog>

#include <cstring>

/**
 * What the exported functions of the data sources share.
 *
 * @tparam Player one instance: setConfig, start, stop, request, release, lastError
 * @tparam Dialog made from a configuration text, gives one back by configText
 */
template <typename Player, typename Dialog>
struct SourceEntry
{
    static unsigned char* requestPicture(int instance, const char* type, int* width, int* height)
    {
        *width = *height = 0;
        const auto player = players().find(instance);
        if (!player || !isKnownType(type))
            return nullptr;
        return player->request(std::strcmp(type, "Gray8") == 0, *width, *height);
    }

    static void releasePicture(int instance)
    {
        if (const auto player = players().find(instance))
            player->release();
    }

    /// The configuration to keep: the given one when the user cancelled.
    static char* showConfigDlg(const char* config)
    {
        const QString text = QString::fromUtf8(config);
        Dialog dialog(text);
        return keepText(dialog.exec() == QDialog::Accepted ? dialog.configText() : text);
    }

    static void setConfig(int instance, const char* config)
    {
        players().findOrMake(instance)->setConfig(QString::fromUtf8(config));
    }

    static void start(int instance)
    {
        if (const auto player = players().find(instance))
            player->start();
    }

    static void stop(int instance)
    {
        if (const auto player = players().find(instance))
            player->stop();
    }

    static void removeInstance(int instance) { players().remove(instance); }

    static char* getLastError(int instance)
    {
        const auto player = players().find(instance);
        return keepText(player ? player->lastError() : QString());
    }

private:
    static InstanceTable<Player>& players()
    {
        static InstanceTable<Player> s_cPlayers;
        return s_cPlayers;
    }

    static bool isKnownType(const char* type)
    {
        return type && (std::strcmp(type, "RGB") == 0 || std::strcmp(type, "Gray8") == 0);
    }
};
