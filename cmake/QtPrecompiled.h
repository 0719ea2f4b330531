// The Qt and standard headers that nearly every file of the window part includes.
#pragma once
#include <QtGui>
#include <QtWidgets>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
