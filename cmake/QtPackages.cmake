# Finds Qt 5, or Qt 6 with -DBELUN_QT_MAJOR=6. Targets are used by their versionless names (Qt::Core
# and so on).
set(BELUN_QT_MAJOR 5 CACHE STRING "Major version of Qt to build with")
set_property(CACHE BELUN_QT_MAJOR PROPERTY STRINGS 5 6)

find_package(Qt${BELUN_QT_MAJOR} REQUIRED COMPONENTS Core Gui Widgets Network LinguistTools)
if(BUILD_TESTING)
  find_package(Qt${BELUN_QT_MAJOR} REQUIRED COMPONENTS Test)
endif()
