#pragma once

#define FOREIGN_API __attribute__((visibility("default")))
