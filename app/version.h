#pragma once

/** The version of the panel, its stand-in supervisor and their packages; the build reads it here too. */
constexpr char vireoVersion[] = "1.0.1.6.1";
