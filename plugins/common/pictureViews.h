#pragma once

#include "records.h"

#include <opencv2/core.hpp>

/**
 * Pictures of a store as OpenCV matrices over the same memory: nothing is copied, the record owns the pixels.
 * Colour pictures are CV_8UC3 in the order blue, green, red with their padded rows; grey ones CV_8UC1
 * or, as outputs only, CV_16UC1.
 */
struct InputView
{
    cv::Mat mat;    ///< Read only; empty when there is an error.
    QString error;  ///< What is wrong with the input, for the step's result text.
};

/// The input picture of a step; never makes a record.
InputView viewInput(const ArithmParamMgr& store, const PictureRef& input);

/**
 * An output picture of this size to write into.
 *
 * @return empty when there is no memory for it. A matrix of the same size and type is never replaced by OpenCV, so what
 *         a function writes into it lands in the record.
 */
cv::Mat viewOutput(ParamDIB& record, cv::Size size);
cv::Mat viewOutput(ParamGray8& record, cv::Size size);
cv::Mat viewOutput(ParamGray16& record, cv::Size size);
