! Calls through the Fortran module, as programs write them: any shape of array, integers of either kind. What
! reaches the library, dfti_module_test.cpp looks at; each step has a name there.
module dfti_module_steps
    use xkl_dfti
    use, intrinsic :: iso_c_binding
    implicit none
    type(DFTI_DESCRIPTOR), pointer :: handle => null(), second => null()
    complex(8) :: cube(2, 3, 4)
    complex(4) :: line(6), plane(3, 2)
    real(8) :: signal(8), other(8), third(8), fourth(8)
    real(4) :: single_signal(2, 2)

contains

    integer(c_int64_t) function step_create() bind(C)
        integer(8) :: length = 64
        step_create = DftiCreateDescriptor(handle, DFTI_DOUBLE, DFTI_COMPLEX, 3_4, [2_4, 3_4, 4_4])
        step_create = 10 * step_create + DftiCreateDescriptor(handle, DFTI_SINGLE, DFTI_REAL, 1_8, length)
        step_create = 10 * step_create + DftiCreateDescriptor(handle, DFTI_SINGLE_R, DFTI_REAL, 1_4, 5_4)
        step_create = 10 * step_create + DftiCreateDescriptor(handle, DFTI_DOUBLE_R, DFTI_REAL, 2_8, [5_8, 6_8])
    end function

    ! Too few lengths for the dimension.
    integer(c_int64_t) function step_short() bind(C)
        step_short = DftiCreateDescriptor(handle, DFTI_DOUBLE, DFTI_COMPLEX, 2_8, 64_8)
    end function

    integer(c_int64_t) function step_lifecycle() bind(C)
        step_lifecycle = DftiCommitDescriptor(handle)
        step_lifecycle = step_lifecycle + DftiCopyDescriptor(handle, second)
        if (.not. associated(second, handle)) step_lifecycle = 90
        step_lifecycle = step_lifecycle + DftiFreeDescriptor(second)
        if (associated(second)) step_lifecycle = 91
    end function

    integer(c_int64_t) function step_set() bind(C)
        step_set = DftiSetValue(handle, DFTI_PLACEMENT, DFTI_NOT_INPLACE)
        step_set = step_set + DftiSetValue(handle, DFTI_NUMBER_OF_TRANSFORMS, 2_8**40)
        step_set = step_set + DftiSetValue(handle, DFTI_INPUT_STRIDES, [0_4, 1_4, 8_4, 64_4])
        step_set = step_set + DftiSetValue(handle, DFTI_OUTPUT_STRIDES, [0_8, 1_8, 9_8, 81_8])
        step_set = step_set + DftiSetValue(handle, DFTI_FORWARD_SCALE, 0.5_4)
        step_set = step_set + DftiSetValue(handle, DFTI_BACKWARD_SCALE, 0.25_8)
        step_set = step_set + DftiSetValue(handle, DFTI_DESCRIPTOR_NAME, 'a name  ')
        step_set = 10 * step_set + DftiSetValue(handle, DFTI_INPUT_STRIDES, [0, 1, 8]) ! one is missing
    end function

    integer(c_int64_t) function step_get() bind(C)
        integer(4) :: narrow, lengths(3)
        integer(8) :: strides(5)
        real(4) :: scale
        character(12) :: name
        character(DFTI_VERSION_LENGTH) :: version
        narrow = -1
        strides = -1
        step_get = DftiGetValue(handle, DFTI_DIMENSION, narrow)
        if (narrow /= 3) step_get = 80
        step_get = step_get + DftiGetValue(handle, DFTI_LENGTHS, lengths)
        if (any(lengths /= [2, 3, 4])) step_get = 81
        step_get = step_get + DftiGetValue(handle, DFTI_INPUT_STRIDES, strides)
        if (any(strides /= [7, 1, 2, 6, -1])) step_get = 82
        step_get = step_get + DftiGetValue(handle, DFTI_FORWARD_SCALE, scale)
        if (abs(scale - 0.1_4) > 0) step_get = 83
        step_get = step_get + DftiGetValue(handle, DFTI_DESCRIPTOR_NAME, name)
        if (name /= 'fake') step_get = 84
        step_get = step_get + DftiGetValue(second, DFTI_VERSION, version)
        if (version /= 'version') step_get = 85
        step_get = 10 * step_get + DftiGetValue(handle, DFTI_LENGTHS, lengths(1:2)) ! too short
    end function

    integer(c_int64_t) function step_statuses() bind(C)
        step_statuses = 0
        if (DftiErrorClass(3_4, DFTI_NO_ERROR)) step_statuses = 1
        if (DftiErrorClass(3_8, DFTI_NO_ERROR)) step_statuses = 2
        if (DftiErrorMessage(3_8) /= 'a text') step_statuses = 3
    end function

    integer(c_int64_t) function step_compute() bind(C)
        step_compute = DftiComputeForward(handle, cube)
        step_compute = step_compute + DftiComputeBackward(handle, line, plane)
        step_compute = step_compute + DftiComputeForward(handle, signal, cube)
        step_compute = step_compute + DftiComputeBackward(handle, signal, other, third, fourth)
        step_compute = step_compute + DftiComputeForward(handle, single_signal, plane)
        step_compute = step_compute + DftiComputeBackward(handle, cube(1, 1, 1))
    end function

    ! A section with gaps is copied, and its results come back.
    integer(c_int64_t) function step_section() bind(C)
        signal = [1, 2, 3, 4, 5, 6, 7, 8]
        step_section = DftiComputeForward(handle, signal(2:8:2))
        step_section = step_section + nint(sum(signal), 8)
    end function

    type(c_ptr) function place_of(what) bind(C)
        integer(c_int), value :: what
        place_of = c_null_ptr
        if (what == 1) place_of = c_loc_of(cube)
        if (what == 2) place_of = c_loc_of(line)
        if (what == 3) place_of = c_loc_of(plane)
        if (what == 4) place_of = c_loc_of(signal)
        if (what == 5) place_of = c_loc_of(single_signal)
    end function

    type(c_ptr) function c_loc_of(x)
        type(*), intent(in), contiguous, target :: x(..)
        c_loc_of = c_loc(x)
    end function
end module
