#pragma once

#include <QString>

/// Every text of the algorithms that the user reads as a result.
namespace Messages {

inline QString colourPicture()
{
    return QStringLiteral("彩色图像");
}
inline QString grayPicture()
{
    return QStringLiteral("灰度图像");
}
inline QString noInputChosen()
{
    return QStringLiteral("没有选择输入图像.");
}
inline QString inputMissing(int id)
{
    return QStringLiteral("输入图像不存在, 编号: %1.").arg(id);
}
inline QString inputEmpty(int id)
{
    return QStringLiteral("输入图像是空的, 编号: %1.").arg(id);
}
inline QString inputOfOtherKind(int id, const QString& found, const QString& wanted)
{
    return QStringLiteral("输入图像的类型不对, 编号: %1, 现在是%2, 需要%3.").arg(id).arg(found, wanted);
}
inline QString notConfigured()
{
    return QStringLiteral("步骤没有设置输出.");
}
inline QString noMemory(int id)
{
    return QStringLiteral("内存不足, 无法保存结果, 编号: %1.").arg(id);
}
inline QString failed(const QString& reason)
{
    return QStringLiteral("处理失败: %1").arg(reason);
}
inline QString noStore()
{
    return QStringLiteral("没有参数表.");
}

}  // namespace Messages
