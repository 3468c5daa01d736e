#pragma once

#include "zuCore/ZuCoreGlobal.h"

#include <QString>

#include <memory>

class CxCameraParam;

/// What names a camera to the user. Texts may be empty.
struct CxCameraInfo
{
    QString modelName;    ///< SFNC DeviceModelName
    QString serialNumber; ///< SFNC DeviceSerialNumber, the primary identifier
    QString userId;       ///< SFNC DeviceUserID, the secondary identifier, given by the user
};

/// The parameter set of one opened camera. Owned by the camera manager, valid
/// until the camera's cameraClosed signal has been delivered; GUI thread only.
class ZUCORE_EXPORT CxCameraParameters
{
public:
    /// What a commit does with the host's own parameter views.
    enum ExCommitRefreshGuiMode {
        eCommitRefreshNone = 0,    ///< nothing
        eCommitRefreshChanged = 1, ///< shows the values of the written parameters
    };

    /// The parameter of that name, or null. `refresh` makes a host that keeps
    /// values read it from the camera again; CxCameraParam::paramValue() always
    /// does.
    CxCameraParam *findParam(const QString &name, bool refresh);

    /// Marks a parameter whose staged value the next commit writes. Marking one
    /// twice changes nothing; an unknown name is ignored.
    void addParamCommitToBatch(const QString &name);

    /// Writes the marked parameters in the order in which they were added. The
    /// batch is empty afterwards; values that the camera refused are dropped and
    /// logged. A marked parameter with nothing staged is passed over.
    void endCommitBatch(ExCommitRefreshGuiMode mode);

    CxCameraInfo cameraInfo() const;

    /// Host side only.
    struct Private;
    explicit CxCameraParameters(std::unique_ptr<Private> d);
    ~CxCameraParameters();

private:
    std::unique_ptr<Private> d;
};
