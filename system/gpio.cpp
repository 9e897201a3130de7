#include "system/gpio.h"

#include "core/irq_guard.h"
#include "system/gpio_registers.h"

namespace monitor {

DriverStatus GpioDataRead(std::uint8_t& data) {
  data = Read(kGpioData);
  return DriverStatus::kOk;
}

DriverStatus GpioDataWrite(std::uint8_t data) {
  IrqGuard lock;
  Write(kGpioData, data);
  return DriverStatus::kOk;
}

DriverStatus GpioStatusRead(std::uint8_t& status) {
  status = Read(kGpioStatus);
  return DriverStatus::kOk;
}

DriverStatus GpioStatusWrite(std::uint8_t status) {
  IrqGuard lock;
  Write(kGpioStatus, status);
  return DriverStatus::kOk;
}

DriverStatus GpioConfigRead(GpioConfig& config) {
  config.direction = Read(kGpioDirection);
  config.enable = Read(kGpioEnable);
  config.setting = Read(kGpioSetting);
  config.trigger = Read(kGpioTrigger);
  return DriverStatus::kOk;
}

DriverStatus GpioConfigWrite(const GpioConfig& config) {
  IrqGuard lock;
  Write(kGpioDirection, config.direction);
  Write(kGpioEnable, config.enable);
  Write(kGpioSetting, config.setting);
  Write(kGpioTrigger, config.trigger);
  return DriverStatus::kOk;
}

namespace {

int ShowConfig() {
  GpioConfig config;
  GpioConfigRead(config);
  Print("DIR: %2x\t", config.direction);
  Print("SETTING: %2x\t", config.setting);
  Print("ENABLE: %2x\t", config.enable);
  Print("TRIGGER: %2x\n\r", config.trigger);
  return kDone;
}

/// = <dir> <setting> <enable> <trigger>
int SetConfig(ArgVector argv) {
  GpioConfig config;
  if (!WordIs(argv[1], "=") || !ParseHex8(argv[2], config.direction) ||
      !ParseHex8(argv[3], config.setting) || !ParseHex8(argv[4], config.enable) ||
      !ParseHex8(argv[5], config.trigger)) {
    return kUsage;
  }
  GpioConfigWrite(config);
  return ShowConfig();
}

int ShowData() {
  std::uint8_t data;
  GpioDataRead(data);
  Print("DATA: %2x\n\r", data);
  return kDone;
}

/// = <value>
int SetData(ArgVector argv) {
  std::uint8_t data;
  if (!WordIs(argv[1], "=") || !ParseHex8(argv[2], data)) return kUsage;
  GpioDataWrite(data);
  return ShowData();
}

/// i: unlike the data, the status is padded with a zero.
int ShowStatus(ArgVector argv) {
  if (!WordIs(argv[1], "I")) return kUsage;
  std::uint8_t status;
  GpioStatusRead(status);
  Print("STATUS: %02x\n\r", status);
  return kDone;
}

/// i = <value>
int SetStatus(ArgVector argv) {
  std::uint8_t status;
  if (!WordIs(argv[1], "I") || !WordIs(argv[2], "=") || !ParseHex8(argv[3], status)) return kUsage;
  GpioStatusWrite(status);
  return ShowStatus(argv);
}

}  // namespace

int GpioConfigCommand(int argc, ArgVector argv) {
  switch (argc) {
    case 1:
      return ShowConfig();
    case 6:
      return SetConfig(argv);
    default:
      return kUsage;
  }
}

int GpioCommand(int argc, ArgVector argv) {
  switch (argc) {
    case 1:
      return ShowData();
    case 2:
      return ShowStatus(argv);
    case 3:
      return SetData(argv);
    case 4:
      return SetStatus(argv);
    default:
      return kUsage;
  }
}

}  // namespace monitor
