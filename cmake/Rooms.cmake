# ostrelon_room(NAME SEES rooms… LIBRARIES targets…): an object library of src/NAME. Objects, since the
# members of the one central class live in several rooms. A room is compiled against the libraries of
# those that it sees; which headers it may include is checked by tests/rooms.
function(ostrelon_room name)
  cmake_parse_arguments(ROOM "" "" "SEES;LIBRARIES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${name}/*.cpp)
  add_library(ostrelon_${name} OBJECT ${sources})
  target_include_directories(ostrelon_${name} PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
  set_property(TARGET ostrelon_${name} PROPERTY OSTRELON_LIBRARIES ${ROOM_LIBRARIES})
  target_link_libraries(ostrelon_${name} PUBLIC ${ROOM_LIBRARIES})
  foreach(seen ${ROOM_SEES})
    get_property(libraries TARGET ostrelon_${seen} PROPERTY OSTRELON_LIBRARIES)
    target_link_libraries(ostrelon_${name} PUBLIC ${libraries})
  endforeach()
endfunction()

# ostrelon_logic_library(rooms…): all of them as the one static library `ostrelon_logic`.
function(ostrelon_logic_library)
  add_library(ostrelon_logic STATIC)
  target_include_directories(ostrelon_logic PUBLIC ${CMAKE_SOURCE_DIR}/src ${CMAKE_BINARY_DIR}/generated)
  target_link_libraries(ostrelon_logic PUBLIC Threads::Threads ICU::data)
  foreach(room ${ARGN})
    target_sources(ostrelon_logic PRIVATE $<TARGET_OBJECTS:ostrelon_${room}>)
    get_property(libraries TARGET ostrelon_${room} PROPERTY OSTRELON_LIBRARIES)
    target_link_libraries(ostrelon_logic PUBLIC ${libraries})
  endforeach()
endfunction()
