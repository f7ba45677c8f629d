/// @file
/// What driver and service of the benchmark agree on beside the bus contract.
#pragma once

namespace bench
{
constexpr char kBusName[] = "com.zarn.linux.ipod";
constexpr char kObjectPath[] = "/com/zarn/linux/ipod";

/// The same interface once more, for signals that only a bare proxy gets.
constexpr char kBareObjectPath[] = "/com/zarn/linux/ipod/bare";

constexpr char kBenchPath[] = "/bench";
constexpr char kBenchInterface[] = "com.zarn.linux.ipod.bench";

/// Prepare sets the size of page and picture, fills the shared vectors once, and says whether each request fills
/// them anew. Names and Bytes send the same page and picture over the bus; Take receives bytes over it.
constexpr char kBenchXml[] = R"(<node><interface name="com.zarn.linux.ipod.bench">
    <method name="Prepare">
      <arg name="names" type="i" direction="in"/>
      <arg name="bytes" type="i" direction="in"/>
      <arg name="fillsEachTime" type="b" direction="in"/>
    </method>
    <method name="Names"><arg name="names" type="as" direction="out"/></method>
    <method name="Bytes"><arg name="bytes" type="v" direction="out"/></method>
    <method name="Take"><arg name="bytes" type="ay" direction="in"/></method>
  </interface></node>)";
}  // namespace bench
