[pilot]
name=LightSpeed
image=

[control setup]
HaveYokePressure=0
RudderController=0

[flight settings]
WantTaxiInWindAdvice=1
MonitorUseOfLights=1
WantRandomFailures=0
WantLooseWireFailures=0
FailureSlider=30
PausePointsLoss=0
PauseWarning=1
PauseGap=30

[logbook format]
Basic=0

[sound setup]
DisableSound=0
BackgroundSounds=1
Humour=1
Captions=1
MonGT=1
MonAT=1
AdviceWP=1
AdviceVORNDB=1
MonitorVOR=1
AutoNearestAirport=0
MonitorTaxiways=1
Instructor=Kate
InstructorNoticesFailures=1

[auto detect setup]
AutoDetectModeCruise=1
AutoDetectModeLanding=1

[auto tune setup]
AutoTuneILS=0
AutoTuneATIS=0
AutoTuneVOR=0
