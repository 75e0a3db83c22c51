# The picture of the demo: gnuplot -c spectrum.gp COURSE SPECTRUM_C SPECTRUM_FORTRAN SPECTRUM_FFTW PICTURE.png
set terminal pngcairo size 1000,900 font ',11'
set output ARG5
set multiplot layout 2,1 title 'Temperature of the sea surface off Peru (0-10 S, 80-90 W), 1950 to 2010'
set grid
set key top left

set xlabel 'year'
set ylabel 'degrees Celsius'
set y2label 'deviation, degrees'
set xrange [1950:2011]
set yrange [10:34]
set y2range [-4:20]
set ytics 18,4,30 nomirror
set y2tics -2,2,4
set label 1 '1982-83' at 1984, second 3.2 left front
set label 2 '1997-98' at 1998.8, second 3.8 left front
plot ARG1 using 1:2 with lines lc rgb '#9ecae1' title 'monthly means', \
     ARG1 using 1:3 axes x1y2 with lines lw 2 lc rgb '#d94801' \
         title 'periods above a year and a half (transformed, cut, transformed back)'

unset y2label
unset y2tics
unset label
set ytics autofreq mirror
set xlabel 'periods a year'
set ylabel 'amplitude, degrees'
set logscale y
set xrange [0:6]
set yrange [0.003:8]
set key top right
set label 1 'El Nino' at 0.22, 1.0 left front
set label 2 'the year' at 1.05, 3.2 left front
set label 3 'half a year' at 2.05, 0.5 left front
plot ARG2 with impulses lc rgb '#9ecae1' title 'DFTI in C', \
     ARG3 with points pt 6 ps 0.9 lc rgb '#d94801' title 'DFTI in Fortran', \
     ARG4 with points pt 2 ps 0.7 lc rgb '#238b45' title 'FFTW3 interface'
unset multiplot
