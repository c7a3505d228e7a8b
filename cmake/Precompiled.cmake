# Most of what a compiler does for a source of ours is to read Qt's headers; with these they are read once for each kind
# of target. A source still names what it uses: scripts/check compiles headers and sources without them.
option(LUMIVANT_PCH "Precompile the headers of Qt and of the standard library" ON)
set(LUMIVANT_STANDARD_HEADERS
    <algorithm> <array> <atomic> <cstdint> <cstring> <functional> <map> <memory> <mutex> <optional> <string> <thread>
    <utility> <vector>)
set(LUMIVANT_HEADLESS_HEADERS
    <QByteArray> <QCoreApplication> <QDir> <QFile> <QFileInfo> <QImage> <QLibrary> <QList> <QMap> <QMutex> <QObject>
    <QPainter> <QPointer> <QSemaphore> <QString> <QStringList> <QTimer> <QVector>)
set(LUMIVANT_WIDGET_HEADERS ${LUMIVANT_HEADLESS_HEADERS}
    <QApplication> <QComboBox> <QDialog> <QDialogButtonBox> <QFileDialog> <QGridLayout> <QGroupBox> <QHeaderView>
    <QLabel> <QLineEdit> <QMainWindow> <QMenu> <QMessageBox> <QPushButton> <QRadioButton> <QSpinBox> <QTableWidget>
    <QVBoxLayout>)
set(LUMIVANT_TEST_HEADERS ${LUMIVANT_WIDGET_HEADERS} <QtTest> <QTemporaryDir>)

# lumivant_precompile(TARGET HEADERS…)
function(lumivant_precompile target)
    if(LUMIVANT_PCH)
        target_precompile_headers(${target} PRIVATE ${LUMIVANT_STANDARD_HEADERS} ${ARGN})
    endif()
endfunction()

# lumivant_share_precompiled(TARGET OWNER): as OWNER has them; both must be compiled alike.
function(lumivant_share_precompiled target owner)
    if(LUMIVANT_PCH)
        target_precompile_headers(${target} REUSE_FROM ${owner})
    endif()
endfunction()

# lumivant_header_owner(NAME LIBRARIES … HEADERS …): a target that is nothing but the precompiled headers of others.
function(lumivant_header_owner name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LIBRARIES;HEADERS")
    set(source "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    file(CONFIGURE OUTPUT "${source}" CONTENT "// Nothing\n")
    add_library(${name} OBJECT "${source}")
    target_link_libraries(${name} PRIVATE lumivant_options ${arg_LIBRARIES})
    set_target_properties(${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
    lumivant_precompile(${name} ${arg_HEADERS})
endfunction()
