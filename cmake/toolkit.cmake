# Finds the toolkit and names what the panel links of it in VIREO_TOOLKIT.
# On version 5 the state machine and the text codecs are part of the core library.
if(VIREO_QT_MAJOR EQUAL 6)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network StateMachine Core5Compat)
    set(VIREO_TOOLKIT Qt6::Core Qt6::Gui Qt6::Widgets Qt6::Network Qt6::StateMachine Qt6::Core5Compat)
else()
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Network)
    set(VIREO_TOOLKIT Qt5::Widgets Qt5::Network)
endif()
if(VIREO_TESTS)
    find_package(Qt${VIREO_QT_MAJOR} REQUIRED COMPONENTS Test)
endif()
