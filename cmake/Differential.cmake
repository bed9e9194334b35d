# Compares the property-list reader with two independent ones.
find_program(FERNWICK_PLISTUTIL plistutil REQUIRED)

add_executable(describe_property_list differential/describe_property_list.cc)
target_link_libraries(describe_property_list PRIVATE fernwick_value)

add_test(NAME Differential.ReadersAgreeButForTheRules
         COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/differential/compare.py
                 --describer $<TARGET_FILE:describe_property_list>
                 --plistutil ${FERNWICK_PLISTUTIL} --seed 1 --count 2000)
add_test(NAME Differential.TheComparisonCanFail
         COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/differential/compare_test.py)

# Compares `settle` with repeated `replay` over recordings that a script changes.
add_test(NAME Settling.AgreesWithRepeatedReplay
         COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/golden/settling/compare.py
                 --lab $<TARGET_FILE:fernwick-lab> --seed 1 --count 300)
add_test(NAME Settling.TheComparisonCanFail
         COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/golden/settling/compare_test.py)
