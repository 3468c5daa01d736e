#include "tests/scriptedhost/ScriptedCall.h"

namespace scripted {

namespace {

const char *verb(Function function)
{
    switch (function) {
    case Function::GetParamInt:
        return "get";
    case Function::GetParamInt64:
        return "get64";
    case Function::SetParamInt:
        return "set";
    case Function::StartAcquisition:
        return "start";
    case Function::StopAcquisition:
        return "stop";
    case Function::GetImage:
        return "image";
    case Function::OpenedCameras:
        return "openedCameras";
    case Function::IsCameraRunning:
        return "isCameraRunning";
    case Function::CameraParameters:
        return "cameraParameters";
    case Function::CameraInfo:
        return "cameraInfo";
    case Function::FindParam:
        return "findParam";
    case Function::EnumItems:
        return "enumItems";
    case Function::ParamValue:
        return "paramValue";
    case Function::SetParamValue:
        return "setParamValue";
    case Function::AddParamCommitToBatch:
        return "addParamCommitToBatch";
    case Function::EndCommitBatch:
        return "endCommitBatch";
    case Function::DefaultSavePath:
        return "defaultSavePath";
    case Function::SetDefaultSavePath:
        return "setDefaultSavePath";
    case Function::AddPluginWidget:
        return "addPluginWidget";
    case Function::SetCameraControlEnabled:
        return "setCameraControlEnabled";
    case Function::InterfaceLevel:
        return "interfaceLevel";
    case Function::RegisterPlotWidget:
        return "registerPlotWidget";
    case Function::ExportImage:
        return "exportImage";
    }
    return "?";
}

bool hasValue(const Call &call)
{
    switch (call.function) {
    case Function::GetParamInt:
    case Function::GetParamInt64:
    case Function::ParamValue:
        return call.result;
    case Function::SetParamInt:
    case Function::IsCameraRunning:
    case Function::SetParamValue:
    case Function::EndCommitBatch:
    case Function::SetCameraControlEnabled:
    case Function::InterfaceLevel:
    case Function::ExportImage:
        return true;
    default:
        return false;
    }
}

} // namespace

std::string Call::text() const
{
    std::string line = verb(function);
    if (!name.empty())
        line.append(" ").append(name);
    if (hasValue(*this))
        line.append(" ").append(std::to_string(value));
    if (!result)
        line += " failed";
    return line;
}

} // namespace scripted
