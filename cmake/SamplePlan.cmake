# The sample plan that the help menu opens: examples/cottage.ostrel as a text in the program.
set(sample ${CMAKE_SOURCE_DIR}/examples/cottage.ostrel)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${sample})
file(READ ${sample} OSTRELON_SAMPLE_PLAN)
# Compilers bound the length of one literal; pieces side by side are one text.
string(LENGTH "${OSTRELON_SAMPLE_PLAN}" length)
set(pieces "")
foreach(at RANGE 0 ${length} 8000)
  string(SUBSTRING "${OSTRELON_SAMPLE_PLAN}" ${at} 8000 piece)
  string(APPEND pieces "    R\"~(${piece})~\"\n")
endforeach()
set(OSTRELON_SAMPLE_PLAN_PIECES "${pieces}")
configure_file(${CMAKE_SOURCE_DIR}/cmake/sample_plan.h.in ${CMAKE_BINARY_DIR}/generated/sample_plan.h @ONLY)
