#pragma once

#include "zuCore/CxValue.h"

#include <QList>
#include <QString>

#include <memory>

/// One parameter of a camera as the host shows it. Owned by its parameter set;
/// GUI thread only.
class ZUCORE_EXPORT CxCameraParam
{
public:
    /// One choice of an enumerated parameter.
    struct CxEnumItem
    {
        QString name; ///< text for the user
        int value;    ///< what is written to the camera
    };

    /// The choices in the camera's order; empty for a plain number.
    QList<CxEnumItem> enumItems() const;

    /// The camera's current value; 0 when it cannot be read.
    CxValue paramValue() const;

    /// Stages a value, in place of one staged before. It reaches the camera with
    /// the set's endCommitBatch(); until then paramValue() does not show it.
    void setParamValue(const CxValue &value);

    /// Host side only.
    struct Private;
    explicit CxCameraParam(std::unique_ptr<Private> d);
    ~CxCameraParam();

private:
    friend class CxCameraParameters;
    std::unique_ptr<Private> d;
};
