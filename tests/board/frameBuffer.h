#pragma once

/**
 * A frame buffer in a file, for machines that have none: a panel of 7 inches as boards have it.
 *
 * The program that links this answers the questions that Qt's platform "linuxfb" asks its device; any file of Bytes
 * bytes may be that device. Pixels are 0xXXRRGGBB.
 */
namespace FrameBuffer {

constexpr int Width = 1024;
constexpr int Height = 600;
constexpr int WidthMm = 154;
constexpr int HeightMm = 90;
constexpr int Bytes = Width * Height * 4;

}  // namespace FrameBuffer
