#pragma once

#include <QtGlobal>

#include <optional>
#include <string>
#include <thread>

namespace scripted {

/// Every operation of the host contract that is recorded.
enum class Function {
    GetParamInt,
    GetParamInt64,
    SetParamInt,
    StartAcquisition,
    StopAcquisition,
    GetImage,
    OpenedCameras,
    IsCameraRunning,
    CameraParameters,
    CameraInfo,
    FindParam,
    EnumItems,
    ParamValue,
    SetParamValue,
    AddParamCommitToBatch,
    EndCommitBatch,
    DefaultSavePath,
    SetDefaultSavePath,
    AddPluginWidget,
    SetCameraControlEnabled,
    InterfaceLevel,
    RegisterPlotWidget,
    ExportImage,
};

/// Whether the operation is one of the six zuApi camera functions.
constexpr bool isCameraFunction(Function function)
{
    return function <= Function::GetImage;
}

/// One call of the plug-in or its engine, recorded as it returned.
struct Call
{
    Function function;
    void *handle = nullptr;
    std::string name{};  ///< of the parameter; the path of a path call
    long long value = 0; ///< written or read; a capture's time-out in ms; an enabled flag; a mode
    bool result = true;
    std::thread::id thread = std::this_thread::get_id();
    bool wantsError = false;  ///< an error out-parameter was passed
    bool cleanRecord = false; ///< capture: size 312 and every other byte zero
    bool flag = false;        ///< capture: the flag argument; findParam: refresh

    /// "get NAME VALUE", "get64 NAME VALUE", "set NAME VALUE", "start", "stop",
    /// "image", otherwise "FUNCTION NAME VALUE"; a failed call ends in " failed"
    /// and a failed read has no value.
    Q_DECL_EXPORT std::string text() const;
};

/// Which calls are to fail. A failing call does nothing else.
struct Failure
{
    std::optional<Function> function{}; ///< none: any camera function
    std::string name{};                 ///< empty: any name
    std::optional<long long> value{};   ///< none: any value (writes only)
    void *handle = nullptr;             ///< null: any camera
    int nth = 0;                        ///< only this matching call, counted from 1; 0: every one

    static Failure read(std::string name) { return {Function::GetParamInt, std::move(name)}; }
    static Failure read64(std::string name) { return {Function::GetParamInt64, std::move(name)}; }
    static Failure write(std::string name) { return {Function::SetParamInt, std::move(name)}; }
    static Failure write(std::string name, long long value)
    {
        return {Function::SetParamInt, std::move(name), value};
    }
    static Failure call(Function function, int nth = 0) { return {function, {}, {}, nullptr, nth}; }
    /// The n-th camera function of all.
    static Failure step(int nth) { return {{}, {}, {}, nullptr, nth}; }
};

} // namespace scripted
