/// @file
/// The protocol between the driver and the service of the benchmark, in addition to the bus contract.
#pragma once

namespace bench
{
constexpr char kBusName[] = "com.zarn.linux.ipod";
constexpr char kObjectPath[] = "/com/zarn/linux/ipod";

/// A copy of the interface, for signals that only a bare proxy receives.
constexpr char kBareObjectPath[] = "/com/zarn/linux/ipod/bare";

constexpr char kBenchPath[] = "/bench";
constexpr char kBenchInterface[] = "com.zarn.linux.ipod.bench";

/// Prepare sets the size of page and image, fills the shared vectors once, and sets whether each request refills them.
/// Names and Bytes send the same page and image over the bus; Take receives bytes over the bus.
/// Emit emits OnPlayStatusChanged that many times, without pauses; the status alternates.
constexpr char kBenchXml[] = R"(<node><interface name="com.zarn.linux.ipod.bench">
    <method name="Prepare">
      <arg name="names" type="i" direction="in"/>
      <arg name="bytes" type="i" direction="in"/>
      <arg name="fillsEachTime" type="b" direction="in"/>
    </method>
    <method name="Names"><arg name="names" type="as" direction="out"/></method>
    <method name="Bytes"><arg name="bytes" type="v" direction="out"/></method>
    <method name="Emit"><arg name="times" type="i" direction="in"/></method>
    <method name="Take"><arg name="bytes" type="ay" direction="in"/></method>
  </interface></node>)";
}  // namespace bench
