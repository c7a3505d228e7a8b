// Runs one fuzz target over a folder of inputs, where there is no fuzzer: what was found once stays mended.
#include <QDir>
#include <QFile>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    const QDir folder(QFile::decodeName(argv[1]));
    LLVMFuzzerInitialize(&argc, &argv);
    int count = 0;
    for (const QString& name : folder.entryList(QDir::Files, QDir::Name)) {
        QFile file(folder.absoluteFilePath(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", qPrintable(name));
            return 2;
        }
        const QByteArray bytes = file.readAll();
        std::fprintf(stderr, "%s\n", qPrintable(name));
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                               static_cast<std::size_t>(bytes.size()));
        ++count;
    }
    std::printf("%d inputs\n", count);
    return count > 0 ? 0 : 1;
}
